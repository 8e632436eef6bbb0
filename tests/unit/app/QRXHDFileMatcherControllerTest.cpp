#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/QRXAppDelegate.h"
#include "app/QRXHDFileMatcherController.h"
#include "platform/fake/FakeProcessRunner.h"
#include "platform/ports/Services.h"
#include "support/BoxWriter.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXGoProUtility.h"
#include "volumes/QRXSonyAVCHDUtility.h"

namespace qrx {
namespace {

using test::CardTree;
using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;

/// A controller without an ffmpeg tool.
class ControllerTest : public testing::Test {
protected:
    void SetUp() override {
        services->processRunner = std::make_shared<platform::FakeProcessRunner>();
        services->ffmpegPath = "/nowhere/ffmpeg";
    }

    [[nodiscard]] std::vector<PathDictionary> clipsAt(const FilePaths& locations) const {
        return controller.filePathDictionariesForAllHDFilesAtFileSystemLocations(locations);
    }

    platform::ScopedServices services;
    QRXHDFileMatcherController controller;
};

TEST_F(ControllerTest, NoLocationsGiveAnEmptyList) {
    EXPECT_THAT(clipsAt({}), IsEmpty());
}

TEST_F(ControllerTest, LocationsThatDoNotExistGiveAnEmptyList) {
    const TemporaryFolder folder;
    EXPECT_THAT(clipsAt({folder / "missing", "", "relative/missing"}), IsEmpty());
}

TEST_F(ControllerTest, SingleFileThatNobodyClaimsGivesAnEmptyList) {
    const CardTree card{"AVCHD/BDMV/INDEX.BDM"};
    EXPECT_THAT(clipsAt({card / "AVCHD/BDMV/INDEX.BDM"}), IsEmpty());
}

TEST_F(ControllerTest, SingleClaimedFileGivesItselfAsItWasNamed) {
    const CardTree card{"AVCHD/BDMV/STREAM/00000.MTS"};
    const FilePath named = card.path() + "/./AVCHD/BDMV/STREAM/00000.MTS";
    EXPECT_THAT(clipsAt({named}), ElementsAre(PathDictionary{named, "Sony NXCAM AVCHD", false}));
}

TEST_F(ControllerTest, FolderGivesItsClaimedFilesWithTheirTitles) {
    const CardTree card{
        "canon/PRIVATE/AVCHD/CANON/",
        "canon/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS",
        "canon/PRIVATE/AVCHD/BDMV/CLIPINF/00000.CPI",
        "loose/clip.mov",
        "loose/notes.txt",
        "panasonic/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS",
        "panasonic/PRIVATE/AVCHD/BDMV/STREAM/.00001.MTS",
        "sony/AVCHD/BDMV/STREAM/00000.MTS",
    };
    EXPECT_THAT(clipsAt({card.path()}),
                ElementsAre(PathDictionary{card / "canon/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS",
                                           "Canon AVCHD", false},
                            PathDictionary{card / "loose/clip.mov", "Apple QuickTime", true},
                            PathDictionary{card / "panasonic/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS",
                                           "Panasonic AVCHD", false},
                            PathDictionary{card / "sony/AVCHD/BDMV/STREAM/00000.MTS",
                                           "Sony NXCAM AVCHD", false}));
}

TEST_F(ControllerTest, FileReachedTwiceOccursTwice) {
    const CardTree folder{"clip.mov"};
    EXPECT_EQ(clipsAt({folder / "clip.mov", folder.path()}).size(), 2U);
}

TEST_F(ControllerTest, QtIsTrueForACameraClipThatIsAMovieToo) {
    const CardTree card{};
    const FilePath clip = card.write("AVCHD/BDMV/STREAM/00000.MTS", test::smallMovie());
    EXPECT_THAT(clipsAt({clip}), ElementsAre(PathDictionary{clip, "Sony NXCAM AVCHD", true}));
}

TEST_F(ControllerTest, DefinedVolumeIsToldByTheType) {
    EXPECT_TRUE(controller.filePathMatchesADefinedVolume("/x/AVCHD/BDMV/STREAM/00000.MTS"));
    EXPECT_TRUE(controller.filePathMatchesADefinedVolume("/x/clip.mov"));
    EXPECT_FALSE(controller.filePathMatchesADefinedVolume("/x/notes.txt"));
    EXPECT_FALSE(controller.filePathMatchesADefinedVolume(""));
}

TEST_F(ControllerTest, PathDictionaryHoldsPathTitleAndQt) {
    EXPECT_EQ(controller.pathDictionaryForFile("/x/y.mov", QRXGoProUtility::sharedInstance()),
              (PathDictionary{"/x/y.mov", "GoPro", true}));
    EXPECT_EQ(controller.pathDictionaryForFile("/x/y.MTS", QRXSonyAVCHDUtility::sharedInstance()),
              (PathDictionary{"/x/y.MTS", "Sony NXCAM AVCHD", false}));
}

TEST_F(ControllerTest, QuickTimeCompatibleByNameOrByContents) {
    const TemporaryFolder folder;
    EXPECT_TRUE(controller.filePathIsQuickTimeCompatible("/nowhere/clip.mov"));
    EXPECT_TRUE(
        controller.filePathIsQuickTimeCompatible(folder.write("clip.bin", test::smallMovie())));
    EXPECT_FALSE(
        controller.filePathIsQuickTimeCompatible(folder.write("notes.txt", test::smallMovie())));
}

struct TrackCase {
    const char* name;
    std::string tracks;
    bool isQuickTime;
};

class ControllerMovie : public ControllerTest, public testing::WithParamInterface<TrackCase> {};

TEST_P(ControllerMovie, IsQuickTimeByItsTracks) {
    const TemporaryFolder folder;
    const FilePath movie = folder.write(
        "clip.mov", test::fileType() + test::box("moov", test::movieHeader() + GetParam().tracks));
    EXPECT_EQ(controller.filePathIsQuickTime(movie), GetParam().isQuickTime);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ControllerMovie,
    testing::Values(TrackCase{"VideoAndSound", test::track("vide", 64, 48) + test::track("soun"),
                              true},
                    TrackCase{"SoundAlone", test::track("soun"), true},
                    TrackCase{"VideoAlone", test::track("vide", 64, 48), true},
                    TrackCase{"TimecodeAlone", test::track("tmcd"), false},
                    TrackCase{"TextAlone", test::track("text"), false},
                    TrackCase{"NoTrack", "", false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ControllerTest, FileThatDoesNotOpenAsAMovieIsNotQuickTime) {
    const TemporaryFolder folder;
    EXPECT_FALSE(controller.filePathIsQuickTime(folder.write("clip.mov", "no movie")));
    EXPECT_FALSE(controller.filePathIsQuickTime(folder.write("empty.mov")));
    EXPECT_FALSE(controller.filePathIsQuickTime(folder / "missing.mov"));
    EXPECT_FALSE(controller.filePathIsQuickTime(folder.path()));
    EXPECT_FALSE(controller.filePathIsQuickTime(""));
}

TEST_F(ControllerTest, MatchingByFormatIsReserved) {
    EXPECT_EQ(controller.filePathsMatchingHDFormats({}, {}), std::nullopt);
    EXPECT_EQ(controller.filePathsMatchingHDFormats({"Canon XF"}, {"/"}), std::nullopt);
}

TEST_F(ControllerTest, SelfTestRunsWithoutItsCard) {
    controller.autoTest();
    SUCCEED();
}

TEST(QRXAppDelegate, HoldsWhatItIsGiven) {
    QRXAppDelegate delegate;
    EXPECT_EQ(delegate.window(), nullptr);
    EXPECT_EQ(delegate.appController(), nullptr);
    const auto controller = std::make_shared<QRXHDFileMatcherController>();
    delegate.setAppController(controller);
    delegate.setWindow(nullptr);
    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(delegate.appController(), controller);
    EXPECT_EQ(delegate.window(), nullptr);
}

}  // namespace
}  // namespace qrx
