#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "foundation/FileQuestions.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/ports/Services.h"
#include "support/MountedImage.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXREDOneUtility.h"

namespace qrx {
namespace {

using test::CardTree;

class REDOne : public testing::Test {
protected:
    REDOne() { services_->mountTable = mounts_; }

    [[nodiscard]] bool claims(const std::string& path) const {
        return utility_.filePathMatchesVolumeStructure(path);
    }
    [[nodiscard]] bool driveMatches(const CardTree& card) {
        mounts_->mountCard(card.path());
        return utility_.drivePathMatchesVolumeStructure(card.path());
    }

    std::shared_ptr<platform::FakeMountTable> mounts_ =
        std::make_shared<platform::FakeMountTable>();
    QRXREDOneUtility utility_;

private:
    platform::ScopedServices services_;
};

TEST_F(REDOne, AReferenceMovieIsClaimedByItsPath) {
    EXPECT_TRUE(claims("/Volumes/R/A001.RDM/A001_C001.RDC/A001_C001_F.mov"));
    EXPECT_TRUE(claims("/volumes/r/a001.rdm/a001_c001.rdc/a001_c001_f.MOV"));
    EXPECT_TRUE(claims("A001.RDM/A001_C001.RDC/x.mov"));
}

TEST_F(REDOne, OtherPathsAreNot) {
    EXPECT_FALSE(claims("/Volumes/R/A001.RDM/A001_C001.RDC/A001_C001_001.R3D"));
    EXPECT_FALSE(claims("/Volumes/R/A001.RDM/A001_C001/A.mov"));
    EXPECT_FALSE(claims("/Volumes/R/A001/A001_C001.RDC/A.mov"));
    EXPECT_FALSE(claims("/Volumes/R/A001.RDM/A001_C001.RDC/deeper/A.mov"));
    EXPECT_FALSE(claims("/A001_C001.RDC/A.mov"));
    EXPECT_FALSE(claims("A.mov"));
    EXPECT_FALSE(claims(""));
}

TEST_F(REDOne, ADriveWithAClipInAReelMatches) {
    const CardTree card{"other/x", "A001.RDM/A001_C001.RDC/A001_C001_001.R3D"};
    EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure(card.path())) << "not mounted";
    EXPECT_TRUE(driveMatches(card));
    EXPECT_TRUE(driveMatches(CardTree{"A001.RDM/A001_C001.RDC"})) << "a file of that name will do";
}

TEST_F(REDOne, ADriveWithTheReelElsewhereDoesNot) {
    EXPECT_FALSE(driveMatches(CardTree{"copies/A001.RDM/A001_C001.RDC/"}));
    EXPECT_FALSE(driveMatches(CardTree{"A001.RDM/"}));
    EXPECT_FALSE(driveMatches(CardTree{"A001_C001.RDC/"}));
    EXPECT_FALSE(driveMatches(CardTree{}));
}

TEST_F(REDOne, KeptDriveTestKnowsUpperCaseOnly) {
    EXPECT_FALSE(driveMatches(CardTree{"a001.rdm/a001_c001.rdc/"}));
    EXPECT_FALSE(driveMatches(CardTree{"A001.RDM/a001_c001.rdc/"}));
}

TEST_F(REDOne, FoldersWithClips) {
    const CardTree card{"A001.RDM/A001_C001.RDC/A001_C001_001.r3d"};
    EXPECT_TRUE(utility_.pathContainsVideoFilesMatchingVolumeStructure(card.path()));
    EXPECT_TRUE(utility_.pathContainsVideoFilesMatchingVolumeStructure(card / "A001.RDM"));
    const CardTree noRaw{"A001.RDM/A001_C001.RDC/A001_C001_F.mov"};
    EXPECT_FALSE(utility_.pathContainsVideoFilesMatchingVolumeStructure(noRaw.path()));
}

TEST_F(REDOne, ThePartnerIsTheFolderOfTheReel) {
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath(
                  "/Volumes/R/A001.RDM/A001_C001.RDC/A001_C001_F.mov"),
              "/Volumes/R");
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("/a.RDM/b.RDM/c.mov"), "/");
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("/Volumes/R/A.RDM.old/F.mov"),
              "/Volumes/R");
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("A001.RDM/F.mov"), "");
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("/Volumes/R/a001.rdm/x/F.mov"),
              "/Volumes/R/a001.rdm/x");
}

TEST_F(REDOne, SiblingsShareTheFolderOfTheReel) {
    const FilePath clip = "/Volumes/R/A001.RDM/A001_C001.RDC/A001_C001_F.mov";
    EXPECT_TRUE(utility_.filePathsAreVolumeSiblings({clip}));
    EXPECT_TRUE(utility_.filePathsAreVolumeSiblings({clip, "/Volumes/R/B002.RDM/x.RDC/y.mov"}));
    EXPECT_FALSE(utility_.filePathsAreVolumeSiblings({clip, "/Volumes/S/A001.RDM/x.RDC/y.mov"}));
    EXPECT_FALSE(utility_.filePathsAreVolumeSiblings({}));
}

TEST_F(REDOne, TheSourceOfAReferenceMovieIsTheFirstRawFileBesideIt) {
    const CardTree card{"A001.RDM/C.RDC/C_F.mov", "A001.RDM/C.RDC/C_002.R3D",
                        "A001.RDM/C.RDC/C_001.R3D", "A001.RDM/C.RDC/A.R3d"};
    const FilePath movie = card / "A001.RDM/C.RDC/C_F.mov";
    EXPECT_EQ(utility_.sourceFilePathForReferenceFile(movie), card / "A001.RDM/C.RDC/C_001.R3D");
    const CardTree lowerCase{"C.RDC/C_F.mov", "C.RDC/c_001.r3d"};
    EXPECT_EQ(utility_.sourceFilePathForReferenceFile(lowerCase / "C.RDC/C_F.mov"),
              lowerCase / "C.RDC/c_001.r3d");
}

TEST_F(REDOne, WithoutARawFileTheMovieIsItsOwnSource) {
    const CardTree card{"C.RDC/C_F.mov"};
    EXPECT_EQ(utility_.sourceFilePathForReferenceFile(card / "C.RDC/C_F.mov"),
              card / "C.RDC/C_F.mov");
    EXPECT_EQ(utility_.sourceFilePathForReferenceFile("/nowhere/C_F.mov"), "/nowhere/C_F.mov");
    EXPECT_EQ(utility_.sourceFilePathForReferenceFile("C_F.mov"), "C_F.mov");
    EXPECT_EQ(utility_.sourceFilePathForReferenceFile(""), "");
}

TEST_F(REDOne, RawFileInAFolder) {
    const CardTree card{"raw/b.R3D", "empty/", "file"};
    EXPECT_EQ(utility_.pathToR3DFileinDirectory(card / "raw"), card / "raw/b.R3D");
    EXPECT_EQ(utility_.pathToR3DFileinDirectory(card / "raw/"), card / "raw//b.R3D");
    EXPECT_EQ(utility_.pathToR3DFileinDirectory(card / "empty"), std::nullopt);
    EXPECT_EQ(utility_.pathToR3DFileinDirectory(card / "file"), std::nullopt);
    EXPECT_EQ(utility_.pathToR3DFileinDirectory(card / "missing"), std::nullopt);
    EXPECT_EQ(utility_.pathToR3DFileinDirectory(""), std::nullopt);
}

TEST_F(REDOne, KeptFormattingRemovesTheFolderItself) {
    const CardTree card{"drive/A001.RDM/C.RDC/C_001.R3D", "drive/notes.txt", "beside"};
    EXPECT_TRUE(utility_.formatDriveToMatchValidVolumeStructure(card / "drive"));
    EXPECT_FALSE(itemExists(card / "drive"));
    EXPECT_TRUE(fileExists(card / "beside"));
    EXPECT_FALSE(utility_.formatDriveToMatchValidVolumeStructure(card / "drive")) << "gone already";
}

TEST_F(REDOne, KeptFormattingAMountedCardEmptiesItAndAnswersNo) {
    const test::MountedImage image;
    ASSERT_EQ(image.refusal(), "") << "a card has to be mounted for this";
    const FilePath clip = image.mountPoint() + "/A001.RDM/C.RDC";
    std::filesystem::create_directories(clip);
    std::filesystem::create_directories(image.mountPoint() + "/elsewhere");
    EXPECT_FALSE(utility_.formatDriveToMatchValidVolumeStructure(image.mountPoint()));
    EXPECT_TRUE(std::filesystem::is_empty(image.mountPoint()));
    EXPECT_FALSE(utility_.formatDriveToMatchValidVolumeStructure(image.mountPoint()));
}

TEST_F(REDOne, FormattingALinkRemovesTheLink) {
    const CardTree outside{"file"};
    const CardTree card{"beside"};
    EXPECT_TRUE(
        utility_.formatDriveToMatchValidVolumeStructure(card.link("drive", outside.path())));
    EXPECT_TRUE(fileExists(outside / "file"));
}

TEST_F(REDOne, ConstantsAndTheRestOfTheParent) {
    EXPECT_EQ(utility_.rootOfUniquePathIdenifier(), ".RDM");
    EXPECT_EQ(utility_.pathComponentsIndicatingTheVolumeHasBegun(),
              std::vector<std::string>{".RDM/"});
    EXPECT_EQ(utility_.metadataFilePathForVideoFile("/x.mov"), std::nullopt);
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile("/x/A001_C001_F.mov"), "A001_C001_F");
    EXPECT_FALSE(utility_.clipSpanningSupported());
}

}  // namespace
}  // namespace qrx
