#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include <climits>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include "foundation/Enumeration.h"
#include "foundation/FileQuestions.h"
#include "foundation/Removal.h"
#include "support/DeepTree.h"
#include "support/PlainUser.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using test::CardTree;
using test::TemporaryFolder;

/// The full paths of `names` below `folder`.
FilePaths below(const TemporaryFolder& folder, std::initializer_list<std::string_view> names) {
    FilePaths paths;
    for (const std::string_view name : names) {
        paths.push_back(folder / name);
    }
    return paths;
}

std::string joined(const FilePaths& paths) {
    std::string text;
    for (const FilePath& path : paths) {
        text += path + "\n";
    }
    return text;
}

/// A card with everything that the hidden tests tell apart.
struct Card : CardTree {
    Card() : CardTree{".DS_Store", ".Trashes/x.mov", "A/.cache/clip.mov", "A/clip.mov"} {
        link("dangling", "nowhere");
    }
};

TEST(SourceFiles, AreNeitherHiddenNorInAHiddenFolderAtTheTop) {
    const Card card;
    EXPECT_EQ(sourceFiles(card.path()), below(card, {"A/.cache/clip.mov", "A/clip.mov"}));
}

TEST(SourceFiles, KeptHiddenFolderFurtherDownIsSearched) {
    const CardTree card{"A/.cache/.deep/clip.mov", "A/.cache/.hidden.mov", "A/.DS_Store"};
    EXPECT_EQ(sourceFiles(card.path()), below(card, {"A/.cache/.deep/clip.mov"}));
}

TEST(SourceFiles, FolderWithATrailingSlashGivesTwo) {
    const Card card;
    EXPECT_EQ(sourceFiles(card.path() + "/"),
              (FilePaths{card.path() + "//A/.cache/clip.mov", card.path() + "//A/clip.mov"}));
}

TEST(SourceFiles, LinksToFilesCountAndLinksToFoldersAreLeft) {
    const TemporaryFolder folder;
    folder.write("A/clip.mov");
    folder.link("b.mov", "A/clip.mov");
    folder.link("c", "A");
    EXPECT_EQ(sourceFiles(folder.path()), below(folder, {"A/clip.mov", "b.mov"}));
}

TEST(SourceFiles, OfWhatIsNoFolderAreNone) {
    const TemporaryFolder folder;
    EXPECT_EQ(sourceFiles(folder / "absent"), FilePaths{});
    EXPECT_EQ(sourceFiles(folder.write("clip.mov")), FilePaths{});
    EXPECT_EQ(sourceFiles(""), FilePaths{});
    EXPECT_EQ(sourceFiles(folder.makeFolder("empty")), FilePaths{});
}

TEST(SourceFiles, LoopsOfLinksAreHarmless) {
    const TemporaryFolder folder;
    folder.write("A/B/clip.mov");
    folder.link("A/B/up", "../..");
    folder.link("A/self", "self");
    folder.link("A/there", "back");
    folder.link("A/back", "there");
    folder.link("A/root", "/");
    EXPECT_EQ(sourceFiles(folder.path()), below(folder, {"A/B/clip.mov"}));
}

TEST(SourceFiles, FifosSocketsAndDevicesAreListedAndNeverOpened) {
    const TemporaryFolder folder;
    folder.write("clip.mov");
    ASSERT_EQ(::mkfifo((folder / "fifo.mov").c_str(), 0600), 0);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (folder / "socket.mov").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(socket);
    folder.link("zero.mov", "/dev/zero");
    EXPECT_EQ(sourceFiles(folder.path()),
              below(folder, {"clip.mov", "fifo.mov", "socket.mov", "zero.mov"}));
    EXPECT_EQ(measuredSourceFiles(folder.path(), Folders::left).files, 4U);
}

TEST(SourceFiles, DeviceFilesAreListed) {
    const TemporaryFolder folder;
    const FilePath device = folder / "null.mov";
    if (::mknod(device.c_str(), S_IFCHR | 0600, ::makedev(1, 3)) != 0) {
        GTEST_SKIP() << "only root may make a device file";
    }
    EXPECT_EQ(sourceFiles(folder.path()), FilePaths{device});
}

TEST(SourceFiles, NamesKeepEveryByte) {
    const TemporaryFolder folder;
    folder.write("caf\xE9/a\nb.mov");
    folder.write("tab\t\x1B[31m.mov");
    EXPECT_EQ(sourceFiles(folder.path()),
              (FilePaths{folder / "caf\xE9/a\nb.mov", folder / "tab\t\x1B[31m.mov"}));
}

TEST(SourceFiles, UnreadableFoldersAreToldAndPassedOver) {
    const CardTree card{"A/clip.mov", "closed/clip.mov", "listed/clip.mov", "Z.mov"};
    ASSERT_EQ(::chmod(card.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod((card / "closed").c_str(), 0), 0);
    ASSERT_EQ(::chmod((card / "listed").c_str(), 0444), 0);
    const std::string seen = test::askedByPlainUser([&] {
        FilePaths files;
        FilePaths unreadable;
        forEachSourceFile(
            card.path(),
            [&](const FilePath& file) {
                files.push_back(file);
                return true;
            },
            [&](const FilePath& folder) { unreadable.push_back(folder); });
        return joined(files) + "unreadable:\n" + joined(unreadable);
    });
    ASSERT_EQ(::chmod((card / "closed").c_str(), 0755), 0);
    ASSERT_EQ(::chmod((card / "listed").c_str(), 0755), 0);
    EXPECT_EQ(seen, joined(below(card, {"A/clip.mov", "Z.mov"})) + "unreadable:\n" +
                        joined(below(card, {"closed"})));
}

TEST(SourceFiles, PathsOfFourThousandBytesAreListed) {
    const TemporaryFolder folder;
    const std::string name(99, 'n');
    const std::size_t count = (4000 - folder.path().size()) / 100;
    const FilePath file = test::makeDeepTree(folder.path(), name, count);
    ASSERT_GT(file.size(), 3900U);
    ASSERT_TRUE(fileExists(file));
    EXPECT_EQ(sourceFiles(folder.path()), FilePaths{file});
    EXPECT_EQ(numberOfFilesBelow(folder.path()), 1U);
    EXPECT_TRUE(removeItem(folder.path()));
}

TEST(SourceFiles, PathsThatTheSystemRefusesAreLeftOut) {
    for (std::size_t length = PATH_MAX - 3; length <= PATH_MAX + 3; ++length) {
        const TemporaryFolder folder;
        const std::size_t count = (length - folder.path().size() - 10) / 100;
        const std::size_t rest = length - folder.path().size() - 100 * count - 1;
        const FilePath file =
            test::makeDeepTree(folder.path(), std::string(99, 'n'), count, std::string(rest, 'f'));
        ASSERT_EQ(file.size(), length);
        const bool isListed = sourceFiles(folder.path()) == FilePaths{file};
        EXPECT_EQ(isListed, fileExists(file)) << length;
        EXPECT_EQ(isListed, length < PATH_MAX) << length;
        EXPECT_TRUE(removeItem(folder.path()));
    }
}

TEST(SourceFiles, HundredThousandFilesInOneFolder) {
    const TemporaryFolder folder;
    constexpr int kFiles = 100'000;
    const int descriptor = ::open(folder.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    for (int i = 0; i < kFiles; ++i) {
        const std::string name = "clip" + std::to_string(100'000 + i) + ".mov";
        ASSERT_EQ(::mknodat(descriptor, name.c_str(), S_IFREG | 0644, 0), 0);
    }
    ::close(descriptor);
    int seen = 0;
    bool inOrder = true;
    EXPECT_TRUE(forEachSourceFile(folder.path(), [&](const FilePath& file) {
        inOrder = inOrder && file == folder / ("clip" + std::to_string(100'000 + seen) + ".mov");
        ++seen;
        return true;
    }));
    EXPECT_EQ(seen, kFiles);
    EXPECT_TRUE(inOrder);
    EXPECT_TRUE(removeItem(folder.path()));
}

// ---- as a stream

TEST(ForEachSourceFile, EndsWhenTheVisitorSaysSo) {
    const CardTree card{"a", "b", "c"};
    FilePaths seen;
    EXPECT_FALSE(forEachSourceFile(card.path(), [&](const FilePath& file) {
        seen.push_back(file);
        return seen.size() < 2;
    }));
    EXPECT_EQ(seen, below(card, {"a", "b"}));
}

TEST(ForEachSourceFile, ShowsTheFirstFilesBeforeItReadsOn) {
    const CardTree card{"A/first.mov", "B/second.mov"};
    FilePaths seen;
    EXPECT_TRUE(forEachSourceFile(card.path(), [&](const FilePath& file) {
        seen.push_back(file);
        if (seen.size() == 1) card.write("B/made-meanwhile.mov");
        return true;
    }));
    EXPECT_EQ(seen, below(card, {"A/first.mov", "B/made-meanwhile.mov", "B/second.mov"}));
}

TEST(ForEachSourceFile, LetsTheVisitorsFaultThrough) {
    const CardTree card{"a"};
    EXPECT_THROW(forEachSourceFile(card.path(),
                                   [](const FilePath&) -> bool { throw std::runtime_error("x"); }),
                 std::runtime_error);
}

// ---- with numbers

TEST(MeasuredSourceFiles, CountsFilesAndTheirSizes) {
    const TemporaryFolder folder;
    folder.write("A/a", "1");
    folder.write("A/B/b", "22");
    folder.write(".hidden", "333");
    folder.write(".folder/c", "4444");
    folder.link("link", "./A/a");
    folder.link("toFolder", "A");
    const MeasuredFiles files = measuredSourceFiles(folder.path(), Folders::left);
    EXPECT_EQ(files.paths, below(folder, {"A/a", "A/B/b", "link"}));
    EXPECT_EQ(files.files, 3U);
    EXPECT_EQ(files.bytes, 1 + 2 + 5);
}

TEST(MeasuredSourceFiles, FoldersAreListedButNotCounted) {
    const TemporaryFolder folder;
    folder.write("A/a", "1");
    folder.makeFolder("A/.hidden");
    folder.makeFolder(".folder/B");
    folder.link("toFolder", "A");
    const MeasuredFiles files = measuredSourceFiles(folder.path(), Folders::counted);
    EXPECT_EQ(files.paths, below(folder, {"A", "A/a", "toFolder"}));
    EXPECT_EQ(files.files, 1U);
    EXPECT_EQ(files.bytes, 1);
}

// ---- one level

TEST(ShallowSourceFiles, HoldsFilesAndFolders) {
    const Card card;
    EXPECT_EQ(shallowSourceFiles(card.path(), Hidden::included),
              below(card, {".DS_Store", ".Trashes", "A"}));
    EXPECT_EQ(shallowSourceFiles(card.path(), Hidden::ignored), below(card, {"A"}));
    EXPECT_EQ(shallowSourceFiles(card / "absent", Hidden::included), FilePaths{});
    EXPECT_EQ(shallowSourceFiles(card / ".DS_Store", Hidden::included), FilePaths{});
}

TEST(ContentsOf, TellsFilesFromFolders) {
    const Card card;
    card.write("clip.mov");
    card.link("toFile", "clip.mov");
    card.link("toFolder", "A");
    const FolderContents all = contentsOf(card.path(), Hidden::included);
    EXPECT_EQ(all.files, below(card, {".DS_Store", "clip.mov", "toFile"}));
    EXPECT_EQ(all.folders, below(card, {".Trashes", "A", "toFolder"}));
    const FolderContents shown = contentsOf(card.path(), Hidden::ignored);
    EXPECT_EQ(shown.files, below(card, {"clip.mov", "toFile"}));
    EXPECT_EQ(shown.folders, below(card, {"A", "toFolder"}));
}

TEST(FoldersBelow, AreNeitherHiddenNorInAHiddenFolderAtTheTop) {
    const CardTree card{"A/B/c", "A/.cache/D/e", ".Trashes/F/"};
    card.link("toA", "A");
    card.link("dangling", "nowhere");
    EXPECT_EQ(foldersBelow(card.path()), below(card, {"A", "A/.cache/D", "A/B", "toA"}));
    EXPECT_EQ(foldersBelow(card / "absent"), FilePaths{});
}

TEST(NumberOfFilesBelow, CountsHiddenOnesToo) {
    const Card card;
    EXPECT_EQ(numberOfFilesBelow(card.path()), 4U);
    card.link("toFile", "A/clip.mov");
    card.link("toFolder", "A");
    EXPECT_EQ(numberOfFilesBelow(card.path()), 5U);
    EXPECT_EQ(numberOfFilesBelow(card / "absent"), 0U);
    EXPECT_EQ(numberOfFilesBelow(card / ".DS_Store"), 0U);
}

TEST(FirstFileContaining, IsTheFirstInNameOrder) {
    const CardTree card{"clip2.mov", "CLIP1.mov", "clip10.mov", ".clip", "A/clip0.mov"};
    EXPECT_EQ(firstFileContaining("clip", card.path()), card / ".clip");
    EXPECT_EQ(firstFileContaining("CLIP", card.path()), card / "CLIP1.mov");
    EXPECT_EQ(firstFileContaining("A", card.path()), card / "A");
    EXPECT_EQ(firstFileContaining("ip2", card.path() + "/"), card.path() + "//clip2.mov");
}

TEST(FirstFileContaining, TakesThePatternAsItIs) {
    const CardTree card{"clip.mov"};
    EXPECT_EQ(firstFileContaining("*", card.path()), std::nullopt);
    EXPECT_EQ(firstFileContaining("CLIP", card.path()), std::nullopt);
    EXPECT_EQ(firstFileContaining("", card.path()), std::nullopt);
    EXPECT_EQ(firstFileContaining("clip", card / "absent"), std::nullopt);
}

}  // namespace
}  // namespace qrx
