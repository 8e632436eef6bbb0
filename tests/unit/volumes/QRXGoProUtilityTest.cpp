#include <string>

#include <gtest/gtest.h>

#include "platform/fake/FakeMainThread.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/ports/Services.h"
#include "support/BoxWriter.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXGoProUtility.h"

namespace qrx {
namespace {

using test::CardTree;
using test::TemporaryFolder;

std::string movie() {
    return test::fileType("mp41") +
           test::box("moov", test::movieHeader() + test::track("vide", 1920, 1080));
}

class GoPro : public testing::Test {
protected:
    GoPro() {
        services_->mainThread = mainThread_;
        services_->mountTable = mounts_;
    }
    [[nodiscard]] bool claimsMovie(const std::string& name) const {
        return utility_.filePathMatchesVolumeStructure(folder_.write(name, movie()));
    }

    std::shared_ptr<platform::FakeMainThread> mainThread_ =
        std::make_shared<platform::FakeMainThread>();
    std::shared_ptr<platform::FakeMountTable> mounts_ =
        std::make_shared<platform::FakeMountTable>();
    TemporaryFolder folder_;
    QRXGoProUtility utility_;

private:
    platform::ScopedServices services_;
};

TEST_F(GoPro, AMovieInAFolderOfDcimIsClaimed) {
    EXPECT_TRUE(claimsMovie("CARD/DCIM/100GOPRO/GOPR0001.MP4"));
    EXPECT_TRUE(claimsMovie("CARD/DCIM/100GOPRO/GOPR0002.mp4"));
    EXPECT_TRUE(claimsMovie("DCIM/any folder/GO.MP4"));
}

TEST_F(GoPro, DirectlyInDcimItIsNot) {
    EXPECT_FALSE(claimsMovie("CARD/DCIM/GOPR0001.MP4"));
    EXPECT_FALSE(claimsMovie("CARD/DCIM/100GOPRO/deeper/GOPR0001.MP4"));
    EXPECT_FALSE(claimsMovie("CARD/dcim/100GOPRO/GOPR0001.MP4"));
    EXPECT_EQ(mainThread_->timesRun, 0) << "the movie is opened only where its place has passed";
}

TEST_F(GoPro, TwoFoldersDcimAreAFolderOfDcim) {
    EXPECT_TRUE(claimsMovie("DCIM/DCIM/GOPR0001.MP4"));
}

TEST_F(GoPro, KeptChaptersAndNewerCamerasThatDoNotBeginWithGoAreNot) {
    EXPECT_FALSE(claimsMovie("DCIM/100GOPRO/GP010001.MP4"));
    EXPECT_FALSE(claimsMovie("DCIM/100GOPRO/GX010001.MP4"));
    EXPECT_FALSE(claimsMovie("DCIM/100GOPRO/gopr0001.MP4"));
    EXPECT_EQ(mainThread_->timesRun, 0);
}

TEST_F(GoPro, OtherExtensionsAreNot) {
    EXPECT_FALSE(claimsMovie("DCIM/100GOPRO/GOPR0001.MOV"));
    EXPECT_FALSE(claimsMovie("DCIM/100GOPRO/GOPR0001.LRV"));
}

TEST_F(GoPro, WhatDoesNotOpenAsAMovieIsNot) {
    EXPECT_FALSE(utility_.filePathMatchesVolumeStructure(
        folder_.write("DCIM/100GOPRO/GOPR0001.MP4", "no movie")));
    EXPECT_FALSE(utility_.filePathMatchesVolumeStructure("/x/DCIM/100GOPRO/GOPR0001.MP4"));
}

TEST_F(GoPro, ThePathTestRunsInItsOrder) {
    const auto decisive = [&](const std::string& file) {
        ExaminedPath path(file);
        return std::string(utility_.findStructure(path).decisive->phrase);
    };
    EXPECT_EQ(decisive("/x/A.MP4"), "the file's name begins with GO");
    EXPECT_EQ(decisive("/x/GOPR0001.MP4"), "the file's folder stands directly in a folder DCIM");
    EXPECT_EQ(decisive("/x/DCIM/1/GOPR0001.MP4"),
              "the file's name ends in .MOV, or it opens as a movie with a video or a sound track");
    EXPECT_EQ(decisive("/x/DCIM/1/GOPR0001.MOV"), "the file's name ends in .MP4");
}

TEST_F(GoPro, TheDriveNeedsDcimAndAFolderOfTheCamera) {
    const CardTree card{"DCIM/100GOPRO/GOPR0001.MP4"};
    EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure(card.path())) << "not mounted";
    mounts_->mountCard(card.path());
    EXPECT_TRUE(utility_.drivePathMatchesVolumeStructure(card.path()));
    EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure(card.path() + "/"));

    const CardTree emptyFolder{"DCIM/100GOPRO/"};
    mounts_->mountCard(emptyFolder.path());
    EXPECT_TRUE(utility_.drivePathMatchesVolumeStructure(emptyFolder.path()));
}

TEST_F(GoPro, OtherDrivesDoNotMatch) {
    const CardTree otherCamera{"DCIM/100CANON/MVI_0001.MOV"};
    const CardTree withoutDcim{"100GOPRO/GOPR0001.MP4"};
    const CardTree dcimIsAFile{"DCIM", "100GOPRO/"};
    const CardTree fixedDisk{"DCIM/100GOPRO/"};
    mounts_->mountCard(otherCamera.path());
    mounts_->mountCard(withoutDcim.path());
    mounts_->mountCard(dcimIsAFile.path());
    for (const CardTree* card : {&otherCamera, &withoutDcim, &dcimIsAFile, &fixedDisk})
        EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure(card->path()));
}

TEST_F(GoPro, FoldersWithClips) {
    const CardTree card{"DCIM/100GOPRO/GOPR0001.mp4"};
    EXPECT_TRUE(utility_.pathContainsVideoFilesMatchingVolumeStructure(card.path()));
    const CardTree noClips{"DCIM/100GOPRO/GOPR0001.THM"};
    EXPECT_FALSE(utility_.pathContainsVideoFilesMatchingVolumeStructure(noClips.path()));
    const CardTree otherFolder{"DCIM/100CANON/A.MP4"};
    EXPECT_FALSE(utility_.pathContainsVideoFilesMatchingVolumeStructure(otherFolder.path()));
    const CardTree outsideDcim{"100GOPRO/A.MP4"};
    EXPECT_FALSE(utility_.pathContainsVideoFilesMatchingVolumeStructure(outsideDcim.path()));
}

TEST_F(GoPro, TheTwoFoldersNeedNotBeOne) {
    const CardTree card{"DCIM/100CANON/A.MP4", "OTHERGOPRO/B.MP4"};
    EXPECT_TRUE(utility_.pathContainsVideoFilesMatchingVolumeStructure(card.path()));
}

TEST_F(GoPro, ClipsAreOrderedByNumber) {
    EXPECT_EQ(
        utility_.orderVolumeVideoFiles({"/d/GOPR0010.MP4", "/d/GOPR0002.MP4", "/d/GOPR0100.MP4"}),
        (FilePaths{"/d/GOPR0002.MP4", "/d/GOPR0010.MP4", "/d/GOPR0100.MP4"}));
}

TEST_F(GoPro, TheRestIsTheParents) {
    EXPECT_EQ(utility_.pathComponentsIndicatingTheVolumeHasBegun(),
              std::vector<std::string>{"/DCIM/"});
    EXPECT_EQ(utility_.rootOfUniquePathIdenifier(), std::nullopt);
    EXPECT_FALSE(utility_.formatDriveToMatchValidVolumeStructure(folder_.path()));
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile("/d/GOPR0001.MP4"), "GOPR0001");
    EXPECT_EQ(utility_.startTimecodeForVideoFile("/d/GOPR0001.MP4"), "00:00:00:00");
    EXPECT_FALSE(utility_.clipSpanningSupported());
}

}  // namespace
}  // namespace qrx
