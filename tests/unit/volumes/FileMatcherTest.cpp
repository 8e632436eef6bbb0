#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/fake/FakeMainThread.h"
#include "platform/ports/Services.h"
#include "readers/InvalidVideoExtensions.h"
#include "support/PlainUser.h"
#include "support/ReportingTool.h"
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

TEST_F(FileMatcherTest, MissingLocationIsToldInItsPlace) {
    const CardTree folder{"a1", "a2"};
    FilePaths told;
    MatchListener listener;
    listener.onClip = [&](const PathDictionary& clip) { told.push_back(clip.filePath); };
    listener.onMissingLocation = [&](const FilePath& path) { told.push_back("missing " + path); };
    (void)matcher.match({folder / "gone", folder / "a1", "", folder / "a2"}, listener);
    EXPECT_THAT(told, ElementsAre("missing " + (folder / "gone"), folder / "a1", "missing ",
                                  folder / "a2"));
}

TEST_F(FileMatcherTest, UtilityOfOneFile) {
    EXPECT_EQ(&matcher.utilityForFile("/x/ab"), &a);
    EXPECT_EQ(&matcher.utilityForFile("/x/b"), &b);
    EXPECT_EQ(&matcher.utilityForFile("/x/c"), &QRXHDMediaVolumeUtilityObject::sharedInstance());
}

// ---- several workers

/// What chance decides about a name, the same at every question: how long the examination takes,
/// and whether it throws.
class Chance {
public:
    explicit Chance(unsigned seed) : seed_(seed) {}

    void befall(std::string_view name) const {
        std::mt19937 random(seed_ ^ static_cast<unsigned>(std::hash<std::string_view>()(name)));
        if (random() % 4 == 0)
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
        if (random() % 7 == 0) throw std::runtime_error("by chance");
    }

private:
    unsigned seed_;
};

Chance chanceInForce{0};

CheckVerdict isLuckyWithA(const QRXHDMediaVolumeUtilityObject& utility, ExaminedPath& path) {
    chanceInForce.befall(path.fileName());
    return hasA(utility, path);
}

constexpr StructureCheck kIsLuckyWithA[]{{"the name has an a, and luck", isLuckyWithA}};

class FileMatcherWorkers : public testing::Test {
protected:
    /// Everything that a listener is told, a line each.
    static std::vector<std::string> story(const FileMatcher& matcher, const FilePaths& locations,
                                          int throwsAt = -1) {
        std::vector<std::string> told;
        int clips = 0;
        const auto here = std::this_thread::get_id();
        const auto tell = [&](const std::string& line) {
            EXPECT_EQ(std::this_thread::get_id(), here);
            told.push_back(line);
        };
        MatchListener listener;
        listener.onClip = [&](const PathDictionary& clip) {
            if (clips++ == throwsAt) throw std::out_of_range("full");
            tell("clip " + clip.filePath + " " + clip.volumeTitle + (clip.qt ? " qt" : ""));
        };
        listener.onProgress = [&](const MatchProgress& so) {
            tell(std::to_string(so.filesDone) + " " + std::to_string(so.clipsFound) + " " +
                 so.currentFile);
        };
        listener.onUnreadableFolder = [&](const FilePath& folder) { tell("unreadable " + folder); };
        listener.onMissingLocation = [&](const FilePath& path) { tell("missing " + path); };
        try {
            const MatchSummary summary = matcher.match(locations, listener);
            tell("done " + std::to_string(summary.filesDone) + " " +
                 std::to_string(summary.clipsFound) + " " + std::to_string(summary.wasCancelled));
        } catch (const std::out_of_range& fault) {
            tell(std::string("fault ") + fault.what());
        }
        return told;
    }

    /// Names with and without an a or a b, hidden ones, and folders in folders.
    static void fill(const TemporaryFolder& folder, std::mt19937& random) {
        for (int i = 0; i < 60; ++i) {  // however few the rest may be
            (void)folder.write("a" + std::to_string(i) + ".mov", "x");
        }
        std::vector<std::string> folders{""};
        for (int i = 0; i < 150; ++i) {
            const std::string& parent = folders[random() % folders.size()];
            const std::string name = std::string(random() % 12 == 0 ? "." : "") +
                                     "abcdMOV"[random() % 7] + std::to_string(random() % 1000) +
                                     (random() % 5 == 0 ? ".mov" : "");
            if (random() % 6 == 0) {
                folders.push_back(parent + name + "d/");
            } else {
                (void)folder.write(parent + name, "x");
            }
        }
    }

    NamedUtility a{1, "Layout A", kIsLuckyWithA};
    NamedUtility b{2, "Layout B", kHasB};
    FileMatcher::Utilities utilities{&a, &b};
};

TEST_F(FileMatcherWorkers, SixteenTellWhatOneTellsOfRandomTrees) {
    const unsigned seed = std::random_device{}();
    std::mt19937 random(seed);
    SCOPED_TRACE("seed " + std::to_string(seed));
    for (int round = 0; round < 8; ++round) {
        const TemporaryFolder folder;
        fill(folder, random);
        chanceInForce = Chance(static_cast<unsigned>(random()));
        const FilePaths locations{folder.path(), folder / "gone", folder.path() + "/", ""};
        const auto expected = story(FileMatcher(utilities, {.jobs = 1}), locations);
        EXPECT_GT(expected.size(), 100U);
        for (const unsigned jobs : {2U, 16U}) {
            EXPECT_EQ(story(FileMatcher(utilities, {.jobs = jobs}), locations), expected);
        }
        const auto cut = story(FileMatcher(utilities, {.jobs = 1}), locations, 10);
        EXPECT_EQ(cut.back(), "fault full");
        EXPECT_EQ(story(FileMatcher(utilities, {.jobs = 16}), locations, 10), cut);
    }
}

TEST_F(FileMatcherWorkers, CancelInTheMiddleLetsNoFurtherFileBegin) {
    static std::atomic<int> begun;
    constexpr auto count = [](const QRXHDMediaVolumeUtilityObject&, ExaminedPath&) {
        ++begun;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return CheckVerdict::passes;
    };
    static constexpr StructureCheck kCounted[]{{"it is counted", count}};
    const NamedUtility counted{1, "Counted", kCounted};
    const TemporaryFolder folder;
    for (int i = 0; i < 300; ++i) {
        (void)folder.write(std::to_string(i), "x");
    }
    constexpr unsigned kJobs = 8;
    const FileMatcher matcher(FileMatcher::Utilities{&counted}, {.jobs = kJobs});
    std::atomic<bool> isCancelled = false;
    int told = 0;
    int begunThen = 0;
    MatchListener listener;
    listener.onClip = [&](const PathDictionary&) {
        if (++told != 20) return;
        begunThen = begun;
        isCancelled = true;
    };
    listener.isCancelled = &isCancelled;
    begun = 0;
    const MatchSummary summary = matcher.match({folder.path()}, listener);
    EXPECT_TRUE(summary.wasCancelled);
    EXPECT_EQ(told, 20);
    EXPECT_LE(begun, begunThen + static_cast<int>(kJobs));
}

/// Stands for a main thread that serves; says which thread opened movies.
TEST_F(FileMatcherWorkers, MoviesAreOpenedOnTheMainThreadOnly) {
    const platform::ScopedServices services;
    auto fake = std::make_shared<platform::FakeMainThread>();
    services->mainThread = fake;
    const TemporaryFolder folder;
    for (int i = 0; i < 60; ++i) {
        (void)folder.write("a" + std::to_string(i), "no movie");
    }
    chanceInForce = Chance(0);
    const FileMatcher matcher(utilities, {.jobs = 8});
    const auto expected = story(matcher, {folder.path()});
    const int opened = fake->timesRun;
    EXPECT_GT(opened, 0);
    // From the main thread itself, which then waits for workers that need it.
    platform::mainThread().runAndWait(
        [&] { EXPECT_EQ(story(matcher, {folder.path()}), expected); });
    EXPECT_EQ(fake->timesRun, 2 * opened + 1);
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

constexpr const char* kVideoReport =
    "Input #0, avi, from 'x':\n"
    "  Duration: 00:00:01.00, start: 0.000000, bitrate: 488 kb/s\n"
    "  Stream #0:0: Video: mpeg4, yuv420p, 64x48, 400 kb/s, 25 fps, 25 tbr, 25 tbn\n";

class FileMatcherQuick : public testing::Test {
protected:
    test::ReportingTool tool_{kVideoReport};
    FileMatcher exact_{MatchOptions{.jobs = 1}};
    FileMatcher quick_{MatchOptions{.jobs = 1, .isQuick = true}};
};

TEST_F(FileMatcherQuick, ToolIsSparedWhatTheBaseUtilityRejects) {
    const auto& base = QRXHDMediaVolumeUtilityObject::sharedInstance();
    const TemporaryFolder folder;
    for (const std::string_view extension : kInvalidVideoExtensions) {
        SCOPED_TRACE(extension);
        const FilePath file = folder.write("clip." + std::string(extension), "x");
        ASSERT_FALSE(base.filePathExtensionIsValid(file));
        const std::size_t before = tool_.runs();
        EXPECT_EQ(exact_.utilityForFile(file).volumeTitle(), "General Movies");
        EXPECT_EQ(tool_.runs(), before + 1);
        EXPECT_EQ(&quick_.utilityForFile(file), &base);
        EXPECT_EQ(tool_.runs(), before + 1);
    }
}

TEST_F(FileMatcherQuick, EverythingElseIsAsExact) {
    const TemporaryFolder folder;
    for (const char* const name : {"clip", "clip.avi", "clip.mov", "clip.jpg.bin", "clip.MTS"}) {
        SCOPED_TRACE(name);
        const FilePath file = folder.write(name, "x");
        const std::size_t before = tool_.runs();
        EXPECT_EQ(&quick_.utilityForFile(file), &exact_.utilityForFile(file));
        EXPECT_EQ(tool_.runs(), before + 2);
    }
}

TEST_F(FileMatcherQuick, NameNeedHaveNoDot) {
    const TemporaryFolder folder;
    const FilePath file = folder.write("PRINT", "x");
    EXPECT_EQ(exact_.utilityForFile(file).volumeTitle(), "General Movies");
    EXPECT_EQ(&quick_.utilityForFile(file), &QRXHDMediaVolumeUtilityObject::sharedInstance());
}

TEST(FileMatcher, FileThatNobodyClaimsIsTheBaseObjects) {
    const FilePath file = "/x/notes.txt";
    ExaminedPath path(file);
    EXPECT_EQ(&FileMatcher(FileMatcher::Utilities{}).utilityForPath(path),
              &QRXHDMediaVolumeUtilityObject::sharedInstance());
}

}  // namespace
}  // namespace qrx
