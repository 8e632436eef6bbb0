#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/FolderListing.h"
#include "foundation/Text.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using Names = std::vector<std::string>;
using test::TemporaryFolder;

TEST(NamesInFolder, AreInNameOrderHiddenOnesIncluded) {
    const test::CardTree card{"b", "A/", ".DS_Store", "a", "_x", "CLIP9", "clip10", "B.mov"};
    EXPECT_EQ(namesInFolder(card.path()),
              (Names{".DS_Store", "_x", "A", "a", "b", "B.mov", "clip10", "CLIP9"}));
}

TEST(NamesInFolder, OfAnEmptyFolderAreNone) {
    const TemporaryFolder folder;
    EXPECT_EQ(namesInFolder(folder.path()), Names{});
}

TEST(NamesInFolder, AreAbsentWhereThereIsNoFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(namesInFolder(folder / "absent"), std::nullopt);
    EXPECT_EQ(namesInFolder(folder.write("file")), std::nullopt);
    EXPECT_EQ(namesInFolder(""), std::nullopt);
    EXPECT_EQ(namesInFolder(folder.path() + '\0'), std::nullopt);
    EXPECT_EQ(namesInFolder(folder.link("dangling", "nowhere")), std::nullopt);
    ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(namesInFolder(folder / "fifo"), std::nullopt);
}

TEST(NamesInFolder, ComeThroughALink) {
    const TemporaryFolder folder;
    folder.write("A/clip.mov");
    EXPECT_EQ(namesInFolder(folder.link("link", "A")), Names{"clip.mov"});
}

TEST(NamesInFolder, KeepEveryByte) {
    const TemporaryFolder folder;
    for (const char* const name :
         {"caf\xE9.mov", "a\nb", "\x01", "tab\t", "é", "e\u0301", "\xFF"}) {
        folder.write(name);
    }
    const auto names = namesInFolder(folder.path());
    ASSERT_TRUE(names);
    EXPECT_EQ(
        std::set<std::string>(names->begin(), names->end()),
        (std::set<std::string>{"caf\xE9.mov", "a\nb", "\x01", "tab\t", "é", "e\u0301", "\xFF"}));
    EXPECT_TRUE(std::is_sorted(names->begin(), names->end(), precedesInNameOrder));
}

/// Names that share long beginnings, differ in case only, end early, and lie beyond ASCII.
std::string someName(std::mt19937& chance, bool beyondAscii) {
    static const Names kPieces{"clip",   "CLIP", "Clip-",  "00",     "_",     ".", "a",
                               "B",      "~",    " ",      "é",      "É",     "ß", "\U0001F600",
                               "\uFF21", "\xFF", "\u0101", "\u0100", "\u2028"};
    std::string name = "take";
    for (std::size_t i = chance() % 6; i > 0; --i) {
        name += kPieces[chance() % (beyondAscii ? kPieces.size() : 10)];
    }
    return name;
}

TEST(FolderListing, OrderIsTheNameOrder) {
    std::mt19937 chance{20240229};
    for (const bool beyondAscii : {false, true}) {
        const TemporaryFolder folder;
        for (int i = 0; i < 400; ++i) {
            folder.write(someName(chance, beyondAscii));
        }
        const auto names = namesInFolder(folder.path());
        ASSERT_TRUE(names);
        Names expected = *names;
        std::shuffle(expected.begin(), expected.end(), chance);
        std::sort(expected.begin(), expected.end(), precedesInNameOrder);
        EXPECT_EQ(*names, expected);
    }
}

TEST(FolderListing, OrderOfNamesThatEndWithinTheCommonBeginning) {
    const test::CardTree card{"abcdefgh",  "abcdefg",   "abcdefghi", "abcdefghij",
                              "ABCDEFGHI", "abcdefgh0", "abcdefg1"};
    EXPECT_EQ(namesInFolder(card.path()), (Names{"abcdefg", "abcdefg1", "abcdefgh", "abcdefgh0",
                                                 "ABCDEFGHI", "abcdefghi", "abcdefghij"}));
}

TEST(FolderListing, TellsWhatEachEntryIs) {
    const TemporaryFolder folder;
    folder.write("a");
    folder.makeFolder("b");
    folder.link("c", "b");
    folder.link("d", "nowhere");
    ASSERT_EQ(::mkfifo((folder / "e").c_str(), 0600), 0);
    const OpenFolder opened(AT_FDCWD, folder.path().c_str(), LastLink::follow);
    ASSERT_TRUE(opened);
    const FolderListing listing(opened);
    ASSERT_EQ(listing.size(), 5U);
    EXPECT_EQ(listing[0].kind, EntryKind::other);
    EXPECT_EQ(listing[1].kind, EntryKind::folder);
    EXPECT_EQ(listing[2].kind, EntryKind::link);
    EXPECT_EQ(listing[3].kind, EntryKind::link);
    EXPECT_EQ(listing[4].kind, EntryKind::other);
    EXPECT_FALSE(listing.isCutShort());
    EXPECT_STREQ(listing[0].name.data(), "a");
}

TEST(EntryKind, IsAskedForWhereTheListingDoesNotTell) {
    const TemporaryFolder folder;
    folder.write("a");
    folder.makeFolder("b");
    folder.link("c", "b");
    const OpenFolder opened(AT_FDCWD, folder.path().c_str(), LastLink::follow);
    ASSERT_TRUE(opened);
    const auto asked = [&](const char* name) {
        return entryKind(opened.descriptor(), name, DT_UNKNOWN);
    };
    EXPECT_EQ(asked("a"), EntryKind::other);
    EXPECT_EQ(asked("b"), EntryKind::folder);
    EXPECT_EQ(asked("c"), EntryKind::link);
    EXPECT_EQ(asked("gone"), EntryKind::vanished);
}

TEST(OpenFolder, OpensFoldersAlone) {
    const TemporaryFolder folder;
    folder.makeFolder("A");
    const FilePath link = folder.link("link", "A");
    EXPECT_TRUE(OpenFolder(AT_FDCWD, link.c_str(), LastLink::follow));
    EXPECT_FALSE(OpenFolder(AT_FDCWD, link.c_str(), LastLink::refuse));
    EXPECT_FALSE(OpenFolder(AT_FDCWD, folder.write("file").c_str(), LastLink::follow));
    EXPECT_FALSE(OpenFolder(AT_FDCWD, "/dev/null", LastLink::follow));
    EXPECT_EQ(OpenFolder().descriptor(), -1);
}

}  // namespace
}  // namespace qrx
