#include <atomic>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/PlainUser.h"
#include "support/TemporaryFolder.h"
#include "volumes/FileMatcher.h"

namespace qrx {
namespace {

using test::CardTree;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

CheckVerdict hasA(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return path.fileName().find('a') == std::string::npos ? CheckVerdict::fails
                                                          : CheckVerdict::passes;
}

CheckVerdict hasB(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return path.fileName().find('b') == std::string::npos ? CheckVerdict::fails
                                                          : CheckVerdict::passes;
}

constexpr StructureCheck kHasA[]{{"the name has an a", hasA}};
constexpr StructureCheck kHasB[]{{"the name has a b", hasB}};

/// Claims by the file's name.
class NamedUtility final : public QRXHDMediaVolumeUtilityObject {
public:
    NamedUtility(std::uint64_t type, std::string title, std::span<const StructureCheck> checks)
        : type_(type), title_(std::move(title)), checks_(checks) {}

    [[nodiscard]] std::uint64_t volumeType() const override { return type_; }
    [[nodiscard]] std::string volumeTitle() const override { return title_; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override {
        return checks_;
    }

private:
    std::uint64_t type_;
    std::string title_;
    std::span<const StructureCheck> checks_;
};

/// A matcher over two invented layouts, and everything that it told.
class FileMatcherTest : public testing::Test {
protected:
    MatchSummary match(const FilePaths& locations) {
        MatchListener listener;
        listener.onClip = [this](const PathDictionary& clip) { clips.push_back(clip); };
        listener.onProgress = [this](const MatchProgress& progress) {
            counts.emplace_back(progress.filesDone, progress.clipsFound);
            looked.push_back(progress.currentFile);
            if (progress.filesDone == cancelAt) isCancelled = true;
        };
        listener.onUnreadableFolder = [this](const FilePath& path) { unreadable.push_back(path); };
        listener.isCancelled = &isCancelled;
        return matcher.match(locations, listener);
    }

    [[nodiscard]] FilePaths clipPaths() const {
        FilePaths paths;
        for (const PathDictionary& clip : clips) {
            paths.push_back(clip.filePath);
        }
        return paths;
    }

    NamedUtility a{1, "Layout A", kHasA};
    NamedUtility b{2, "Layout B", kHasB};
    NamedUtility none{QRXHDMediaVolumeUtilityObject::kNoDefinedVolume, "Generic", kHasB};
    FileMatcher matcher{FileMatcher::Utilities{&a, &b}};

    std::vector<PathDictionary> clips;
    FilePaths looked;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> counts;
    FilePaths unreadable;
    std::uint64_t cancelAt = UINT64_MAX;
    std::atomic<bool> isCancelled = false;
};

TEST_F(FileMatcherTest, NothingAtNoLocations) {
    const MatchSummary summary = match({});
    EXPECT_EQ(summary.filesDone, 0U);
    EXPECT_FALSE(summary.wasCancelled);
    EXPECT_THAT(clips, IsEmpty());
}

TEST_F(FileMatcherTest, LocationsWithoutAnythingArePassedOver) {
    const CardTree folder{"a.txt"};
    const FilePath dangling = folder.link("gone", "/nowhere/at/all");
    const FilePath throughFile = folder / "a.txt/";
    match({"", folder / "missing", dangling, throughFile, folder / "a.txt"});
    EXPECT_THAT(clipPaths(), ElementsAre(folder / "a.txt"));
}

TEST_F(FileMatcherTest, FileStandsForItselfByThePathThatWasGiven) {
    const CardTree folder{"x/a.txt"};
    const FilePath given = folder.path() + "//x/./a.txt";
    match({given});
    EXPECT_THAT(clips, ElementsAre(PathDictionary{given, "Layout A", false}));
}

TEST_F(FileMatcherTest, HiddenFileThatIsNamedItselfIsLookedAt) {
    const CardTree folder{".a.txt"};
    match({folder / ".a.txt"});
    EXPECT_THAT(clipPaths(), ElementsAre(folder / ".a.txt"));
}

TEST_F(FileMatcherTest, FileThatNobodyClaimsIsLeftOut) {
    const CardTree folder{"c.txt"};
    const MatchSummary summary = match({folder / "c.txt"});
    EXPECT_THAT(clips, IsEmpty());
    EXPECT_EQ(summary.filesDone, 1U);
    EXPECT_EQ(summary.clipsFound, 0U);
}

TEST_F(FileMatcherTest, FolderStandsForItsSourceFilesInNameOrder) {
    const CardTree folder{"b.txt", "sub/a1.txt", "sub/c.txt", "a0.txt", ".a.txt", "A.d/ab.txt"};
    match({folder.path()});
    EXPECT_THAT(clipPaths(), ElementsAre(folder / "A.d/ab.txt", folder / "a0.txt", folder / "b.txt",
                                         folder / "sub/a1.txt"));
}

TEST_F(FileMatcherTest, FolderItselfIsNeverAClip) {
    const CardTree folder{"a/", "b/a/"};
    match({folder.path(), folder / "a"});
    EXPECT_THAT(clips, IsEmpty());
    EXPECT_THAT(looked, IsEmpty());
}

TEST_F(FileMatcherTest, FolderGivenWithASlashKeepsIt) {
    const CardTree folder{"d/a.txt"};
    match({folder / "d/"});
    EXPECT_THAT(clipPaths(), ElementsAre(folder / "d//a.txt"));
}

TEST_F(FileMatcherTest, LinkToAFolderIsExpanded) {
    const CardTree folder{"d/a.txt"};
    const FilePath link = folder.link("link", "d");
    match({link});
    EXPECT_THAT(clipPaths(), ElementsAre(link + "/a.txt"));
}

TEST_F(FileMatcherTest, LocationsKeepTheirOrder) {
    const CardTree folder{"z/a.txt", "m/b.txt", "a.txt"};
    match({folder / "z", folder / "a.txt", folder / "m"});
    EXPECT_THAT(clipPaths(), ElementsAre(folder / "z/a.txt", folder / "a.txt", folder / "m/b.txt"));
}

TEST_F(FileMatcherTest, FileReachedTwiceIsToldTwice) {
    const CardTree folder{"a.txt"};
    const MatchSummary summary = match({folder / "a.txt", folder.path(), folder / "a.txt"});
    EXPECT_THAT(clipPaths(), ElementsAre(folder / "a.txt", folder / "a.txt", folder / "a.txt"));
    EXPECT_EQ(summary.clipsFound, 3U);
}

TEST_F(FileMatcherTest, FirstUtilityInOrderWins) {
    const CardTree folder{"ab"};
    match({folder.path()});
    matcher = FileMatcher(FileMatcher::Utilities{&b, &a});
    match({folder.path()});
    EXPECT_THAT(clips, ElementsAre(PathDictionary{folder / "ab", "Layout A", false},
                                   PathDictionary{folder / "ab", "Layout B", false}));
}

TEST_F(FileMatcherTest, UtilityOfNoDefinedVolumeTakesAFileAway) {
    const CardTree folder{"b.txt", "ab.txt"};
    matcher = FileMatcher(FileMatcher::Utilities{&none, &a});
    match({folder.path()});
    EXPECT_THAT(clips, IsEmpty());
}

TEST_F(FileMatcherTest, QtIsAskedApartFromWhoClaims) {
    const CardTree folder{"a.MOV", "a.mov", "a.txt"};
    match({folder.path()});
    EXPECT_THAT(clips, ElementsAre(PathDictionary{folder / "a.MOV", "Layout A", true},
                                   PathDictionary{folder / "a.mov", "Layout A", true},
                                   PathDictionary{folder / "a.txt", "Layout A", false}));
}

TEST_F(FileMatcherTest, ProgressComesBeforeEachFile) {
    const CardTree folder{"a", "b", "c", "d"};
    const MatchSummary summary = match({folder.path()});
    EXPECT_THAT(looked, ElementsAre(folder / "a", folder / "b", folder / "c", folder / "d"));
    EXPECT_THAT(counts, ElementsAre(std::pair{0U, 0U}, std::pair{1U, 1U}, std::pair{2U, 2U},
                                    std::pair{3U, 2U}));
    EXPECT_EQ(summary.filesDone, 4U);
    EXPECT_EQ(summary.clipsFound, 2U);
}

TEST_F(FileMatcherTest, CancelledBeforeTheFirstFile) {
    const CardTree folder{"a"};
    isCancelled = true;
    const MatchSummary summary = match({folder.path(), folder / "a"});
    EXPECT_TRUE(summary.wasCancelled);
    EXPECT_EQ(summary.filesDone, 0U);
    EXPECT_THAT(clips, IsEmpty());
    EXPECT_THAT(looked, IsEmpty());
}

TEST_F(FileMatcherTest, FileUnderExaminationWhenCancelledIsNotTold) {
    const CardTree folder{"a1", "a2", "a3", "a4"};
    cancelAt = 2;
    const MatchSummary summary = match({folder.path(), folder / "a4"});
    EXPECT_TRUE(summary.wasCancelled);
    EXPECT_EQ(summary.filesDone, 2U);
    EXPECT_THAT(clipPaths(), ElementsAre(folder / "a1", folder / "a2"));
    EXPECT_THAT(looked, ElementsAre(folder / "a1", folder / "a2", folder / "a3"));
}

TEST_F(FileMatcherTest, WhatTheListenerThrowsEndsTheRun) {
    const CardTree folder{"a1", "a2"};
    MatchListener listener;
    int told = 0;
    listener.onClip = [&told](const PathDictionary&) {
        ++told;
        throw std::runtime_error("full");
    };
    EXPECT_THROW((void)matcher.match({folder.path()}, listener), std::runtime_error);
    EXPECT_EQ(told, 1);
}

TEST_F(FileMatcherTest, UnreadableFolderIsNamedAndTheRestIsDone) {
    const CardTree folder{"d1/a", "d2/a"};
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod((folder / "d1").c_str(), 0), 0);
    EXPECT_EQ(test::askedByPlainUser([&] {
                  match({folder.path(), folder / "d1"});
                  std::string told;
                  for (const FilePath& path : unreadable) {
                      told += "unreadable " + path + "\n";
                  }
                  for (const FilePath& path : clipPaths()) {
                      told += "clip " + path + "\n";
                  }
                  return told;
              }),
              "unreadable " + (folder / "d1") + "\nunreadable " + (folder / "d1") + "\nclip " +
                  (folder / "d2/a") + "\n");
    ASSERT_EQ(::chmod((folder / "d1").c_str(), 0700), 0);
}

TEST(FileMatcher, WithoutUtilitiesUsesTheAggregatesInItsOrder) {
    const CardTree card{"AVCHD/BDMV/STREAM/00000.MTS", "PRIVATE/AVCHD/BDMV/STREAM/00000.MTS",
                        "PRIVATE/AVCHD/BDMV/CLIPINF/00000.CPI"};
    std::vector<PathDictionary> clips;
    MatchListener listener;
    listener.onClip = [&clips](const PathDictionary& clip) { clips.push_back(clip); };
    (void)FileMatcher().match({card / "AVCHD", card / "PRIVATE"}, listener);
    EXPECT_THAT(clips, ElementsAre(PathDictionary{card / "AVCHD/BDMV/STREAM/00000.MTS",
                                                  "Sony NXCAM AVCHD", false},
                                   PathDictionary{card / "PRIVATE/AVCHD/BDMV/STREAM/00000.MTS",
                                                  "Panasonic AVCHD", false}));
}

TEST(FileMatcher, FileThatNobodyClaimsIsTheBaseObjects) {
    const FilePath file = "/x/notes.txt";
    ExaminedPath path(file);
    EXPECT_EQ(&FileMatcher(FileMatcher::Utilities{}).utilityForPath(path),
              &QRXHDMediaVolumeUtilityObject::sharedInstance());
}

}  // namespace
}  // namespace qrx
