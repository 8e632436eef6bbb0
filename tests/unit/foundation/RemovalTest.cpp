#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/Enumeration.h"
#include "foundation/FileQuestions.h"
#include "foundation/ItemLookups.h"
#include "foundation/Removal.h"
#include "support/DeepTree.h"
#include "support/PlainUser.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using Paths = std::vector<std::string>;
using test::CardTree;
using test::TemporaryFolder;

Paths left(const TemporaryFolder& folder) {
    return relativePathsBelow(folder.path()).value_or(Paths{"(gone)"});
}

/// A folder outside, with links to it and to its file inside of `folder`.
struct Outside : CardTree {
    explicit Outside(const TemporaryFolder& folder, const std::string& place)
        : CardTree{"precious/clip.mov"} {
        folder.link(place + "/toFolder", path());
        folder.link(place + "/toFile", *this / "precious/clip.mov");
    }
    [[nodiscard]] bool isUntouched() const {
        return left(*this) == Paths{"precious", "precious/clip.mov"};
    }
};

// ---- one item

TEST(RemoveItem, RemovesAFileOrAWholeTree) {
    const CardTree card{"A/.hidden/b", "A/c/", "A/d\n\xFF", "e"};
    EXPECT_TRUE(removeItem(card / "e"));
    EXPECT_EQ(left(card), (Paths{"A", "A/.hidden", "A/.hidden/b", "A/c", "A/d\n\xFF"}));
    EXPECT_TRUE(removeItem(card / "A"));
    EXPECT_EQ(left(card), Paths{});
    EXPECT_TRUE(removeItem(card.path() + "//"));
    EXPECT_FALSE(folderExists(card.path()));
}

TEST(RemoveItem, RemovesSpecialFiles) {
    const TemporaryFolder folder;
    folder.makeFolder("A");
    ASSERT_EQ(::mkfifo((folder / "A/fifo").c_str(), 0600), 0);
    EXPECT_TRUE(removeItem(folder / "A"));
    EXPECT_EQ(left(folder), Paths{});
}

TEST(RemoveItem, OfWhatIsMissingIsNo) {
    const TemporaryFolder folder;
    folder.write("file");
    EXPECT_FALSE(removeItem(folder / "absent"));
    EXPECT_FALSE(removeItem(folder / "file/x"));
    EXPECT_FALSE(removeItem(""));
    EXPECT_FALSE(removeItem((folder / "file") + '\0' + "x"));
    EXPECT_TRUE(fileExists(folder / "file"));
}

TEST(RemoveItem, RemovesALinkAndNotItsTarget) {
    const TemporaryFolder folder;
    const Outside outside(folder, "A");
    EXPECT_TRUE(removeItem(folder / "A/toFile"));
    EXPECT_TRUE(removeItem(folder / "A/toFolder/"));  // the slash does not lead through the link
    EXPECT_EQ(left(folder), Paths{"A"});
    EXPECT_TRUE(outside.isUntouched());
    EXPECT_TRUE(removeItem(folder.link("dangling", "nowhere")));
}

TEST(RemoveItem, NeverLeavesTheTree) {
    const TemporaryFolder folder;
    const Outside outside(folder, "A/B");
    folder.link("A/B/up", "../..");
    EXPECT_TRUE(removeItem(folder / "A"));
    EXPECT_EQ(left(folder), Paths{});
    EXPECT_TRUE(outside.isUntouched());
}

TEST(RemoveItem, RefusesTheRootFolder) {
    EXPECT_FALSE(test::askedByPlainUser([] {  // where a mistake would cost least
                     return std::string(removeItem("/") || removeItem("///") ? "removed" : "");
                 }) == "removed");
}

TEST(RemoveItem, DepthIsNoLimit) {
    const TemporaryFolder folder;
    test::makeDeepTree(folder.path(), "dddd", 1000);
    EXPECT_TRUE(removeItem(folder / "dddd"));
    EXPECT_EQ(left(folder), Paths{});
}

TEST(RemoveItem, StopsWhereAnItemCannotBeRemoved) {
    const CardTree card{"A/a", "A/locked/x", "A/z"};
    ASSERT_EQ(::chmod(card.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod((card / "A").c_str(), 0777), 0);
    ASSERT_EQ(::chmod((card / "A/locked").c_str(), 0555), 0);
    EXPECT_EQ(test::askedByPlainUser([&] { return removeItem(card / "A") ? "yes" : "no"; }), "no");
    ASSERT_EQ(::chmod((card / "A/locked").c_str(), 0755), 0);
    EXPECT_EQ(left(card), (Paths{"A", "A/locked", "A/locked/x", "A/z"}));
}

TEST(RemoveItem, EmptyFolderGoesAlsoWhenItCannotBeRead) {
    const CardTree card{"A/closed/"};
    ASSERT_EQ(::chmod(card.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod((card / "A").c_str(), 0777), 0);
    ASSERT_EQ(::chmod((card / "A/closed").c_str(), 0), 0);
    EXPECT_EQ(test::askedByPlainUser([&] { return removeItem(card / "A") ? "yes" : "no"; }), "yes");
    EXPECT_EQ(left(card), Paths{});
}

// ---- emptying

TEST(ClearFolder, RemovesEveryFileAndKeepsEveryFolder) {
    const CardTree card{".DS_Store", ".Trashes/x", "A/B/c", "A/B/D/", "e\n\xFF"};
    ASSERT_EQ(::mkfifo((card / "fifo").c_str(), 0600), 0);
    EXPECT_TRUE(clearFolder(card.path()));
    EXPECT_EQ(left(card), (Paths{".Trashes", "A", "A/B", "A/B/D"}));
    EXPECT_TRUE(clearFolder(card.path() + "/"));
}

TEST(ClearFolder, OfAnEmptyFolderIsDone) {
    const TemporaryFolder folder;
    EXPECT_TRUE(clearFolder(folder.path()));
}

TEST(ClearFolder, OfWhatIsNoFolderIsNo) {
    const TemporaryFolder folder;
    EXPECT_FALSE(clearFolder(folder / "absent"));
    EXPECT_FALSE(clearFolder(folder.write("file")));
    EXPECT_FALSE(clearFolder(""));
    EXPECT_TRUE(fileExists(folder / "file"));
}

TEST(ClearFolder, RemovesLinksAndNotTheirTargets) {
    const TemporaryFolder folder;
    const Outside outside(folder, "A");
    EXPECT_TRUE(clearFolder(folder.path()));
    EXPECT_EQ(left(folder), Paths{"A"});
    EXPECT_TRUE(outside.isUntouched());
}

TEST(ClearFolder, MayBeNamedByALink) {
    const TemporaryFolder folder;
    folder.write("card/clip.mov");
    EXPECT_TRUE(clearFolder(folder.link("link", "card")));
    EXPECT_EQ(left(folder), (Paths{"card", "link"}));
}

TEST(ClearFolder, StopsAtALinkThatLeadsNowhere) {
    const CardTree card{"a", "c"};
    card.link("b", "nowhere");
    EXPECT_FALSE(clearFolder(card.path()));
    EXPECT_EQ(left(card), (Paths{"b", "c"}));
    EXPECT_TRUE(isSymbolicLink(card / "b"));
}

TEST(ClearFolder, StopsWhereAFileCannotBeRemoved) {
    const CardTree card{"a", "locked/x", "z"};
    ASSERT_EQ(::chmod(card.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod((card / "locked").c_str(), 0555), 0);
    EXPECT_EQ(test::askedByPlainUser([&] { return clearFolder(card.path()) ? "yes" : "no"; }),
              "no");
    ASSERT_EQ(::chmod((card / "locked").c_str(), 0755), 0);
    EXPECT_EQ(left(card), (Paths{"locked", "locked/x", "z"}));
}

TEST(ClearFolder, FolderThatCannotBeReadIsNotCleared) {
    const CardTree card{"closed/x", "z"};
    ASSERT_EQ(::chmod(card.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod((card / "closed").c_str(), 0), 0);
    EXPECT_EQ(test::askedByPlainUser([&] { return clearFolder(card.path()) ? "yes" : "no"; }),
              "no");
    ASSERT_EQ(::chmod((card / "closed").c_str(), 0755), 0);
    EXPECT_EQ(left(card), (Paths{"closed", "closed/x", "z"}));
}

TEST(ClearFolder, DepthIsNoLimit) {
    const TemporaryFolder folder;
    test::makeDeepTree(folder.path(), "dddd", 1000);
    EXPECT_TRUE(clearFolder(folder.path()));
    EXPECT_EQ(numberOfFilesBelow(folder.path()), 0U);
    EXPECT_EQ(left(folder).size(), 1000U);
    EXPECT_TRUE(removeItem(folder / "dddd"));
}

// ---- folders alone

TEST(RemoveFoldersIn, KeepsFilesAndWhatIsCalledContents) {
    const CardTree card{"a.mov",         "A/B/c",      "A/CONTENTS/d", "CONTENTS/CLIP/e",
                        "MYCONTENTS2/f", "Contents/g", ".hidden/h"};
    removeFoldersIn(card.path());
    EXPECT_EQ(left(card), (Paths{"a.mov", "CONTENTS", "CONTENTS/CLIP", "CONTENTS/CLIP/e",
                                 "MYCONTENTS2", "MYCONTENTS2/f"}));
}

TEST(RemoveFoldersIn, LeavesLinksToFolders) {
    const TemporaryFolder folder;
    const Outside inside(folder, "A");
    const Outside outside(folder, "");
    removeFoldersIn(folder.path());
    EXPECT_EQ(left(folder), (Paths{"toFile", "toFolder"}));
    EXPECT_TRUE(inside.isUntouched());
    EXPECT_TRUE(outside.isUntouched());
}

TEST(RemoveFoldersIn, StopsAtALinkThatLeadsNowhere) {
    const CardTree card{"A/a", "C/c"};
    card.link("B", "nowhere");
    removeFoldersIn(card.path());
    EXPECT_EQ(left(card), (Paths{"B", "C", "C/c"}));
}

TEST(RemoveFoldersIn, StopsWhereAFolderCannotBeRemoved) {
    const CardTree card{"A/a", "locked/x", "Z/z"};
    for (const char* const name : {"", "A", "Z"}) {
        ASSERT_EQ(::chmod((card / name).c_str(), 0777), 0);
    }
    ASSERT_EQ(::chmod((card / "locked").c_str(), 0555), 0);
    EXPECT_EQ(test::askedByPlainUser([&] {
                  removeFoldersIn(card.path());
                  return "done";
              }),
              "done");
    ASSERT_EQ(::chmod((card / "locked").c_str(), 0755), 0);
    EXPECT_EQ(left(card), (Paths{"locked", "locked/x", "Z", "Z/z"}));
}

TEST(RemoveFoldersIn, OfWhatIsNoFolderDoesNothing) {
    const CardTree card{"file"};
    removeFoldersIn(card / "file");
    removeFoldersIn(card / "absent");
    removeFoldersIn("");
    EXPECT_EQ(left(card), Paths{"file"});
}

}  // namespace
}  // namespace qrx
