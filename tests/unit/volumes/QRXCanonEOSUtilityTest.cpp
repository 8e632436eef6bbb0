#include <string>

#include <gtest/gtest.h>

#include "foundation/FileOrdering.h"
#include "foundation/FileQuestions.h"
#include "foundation/PathText.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/QRXCanonEOSUtility.h"

namespace qrx {
namespace {

using test::CardTree;

class CanonEOS : public testing::Test {
protected:
    CanonEOS() { services_->mountTable = mounts_; }

    [[nodiscard]] bool claims(const std::string& path) const {
        return utility_.filePathMatchesVolumeStructure(path);
    }

    std::shared_ptr<platform::FakeMountTable> mounts_ =
        std::make_shared<platform::FakeMountTable>();
    QRXCanonEOSUtility utility_;

private:
    platform::ScopedServices services_;
};

TEST_F(CanonEOS, AMovBelowDcimIsClaimedByItsPath) {
    EXPECT_TRUE(claims("/Volumes/EOS/DCIM/100CANON/MVI_0001.MOV"));
    EXPECT_TRUE(claims("/volumes/eos/dcim/100canon/mvi_0001.mov"));
    EXPECT_TRUE(claims("/DCIM/a.mov"));
    EXPECT_TRUE(claims("/DCIM/a/b/c/d.mov"));
}

TEST_F(CanonEOS, OtherPathsAreNot) {
    EXPECT_FALSE(claims("DCIM/100CANON/MVI_0001.MOV")) << "no / before DCIM";
    EXPECT_FALSE(claims("/Volumes/EOS/100CANON/MVI_0001.MOV"));
    EXPECT_FALSE(claims("/Volumes/EOS/DCIM/100CANON/MVI_0001.MP4"));
    EXPECT_FALSE(claims("/Volumes/EOS/DCIM/100CANON/MVI_0001.THM"));
    EXPECT_FALSE(claims(""));
}

TEST_F(CanonEOS, TheDriveNeedsDcimAndMisc) {
    const CardTree card{"DCIM/", "MISC/"};
    EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure(card.path())) << "not mounted";
    mounts_->mountCard(card.path());
    EXPECT_TRUE(utility_.drivePathMatchesVolumeStructure(card.path()));
    const CardTree withoutMisc{"DCIM/"};
    const CardTree withoutDcim{"MISC/"};
    mounts_->mountCard(withoutMisc.path());
    mounts_->mountCard(withoutDcim.path());
    EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure(withoutMisc.path()));
    EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure(withoutDcim.path()));
}

TEST_F(CanonEOS, KeptFolderTestNeverSucceeds) {
    const CardTree card{"DCIM/100CANON/MVI_0001.MOV", "DCIM/MVI_0002.MOV"};
    EXPECT_FALSE(utility_.pathContainsVideoFilesMatchingVolumeStructure(card.path()));
}

TEST_F(CanonEOS, TheSidecarStandsBesideTheClip) {
    const CardTree card{"DCIM/MVI_0001.MOV", "DCIM/MVI_0001.THM", "DCIM/MVI_0002.mov"};
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(card / "DCIM/MVI_0001.MOV"),
              card / "DCIM/MVI_0001.THM");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(card / "DCIM/MVI_0001.mov"),
              card / "DCIM/MVI_0001.THM");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(card / "DCIM/MVI_0002.mov"), std::nullopt);
}

TEST_F(CanonEOS, KeptEveryMovOfThePathIsReplaced) {
    const CardTree card{"A.MOV/MVI_0001.MOV", "A.THM/MVI_0001.THM"};
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(card / "A.MOV/MVI_0001.MOV"),
              card / "A.THM/MVI_0001.THM");
}

TEST_F(CanonEOS, KeptPartnerIsTheFolderAboveTheCard) {
    const CardTree mounted{"EOS/DCIM/100CANON/MVI_0001.MOV"};
    const FilePath clip = mounted / "EOS/DCIM/100CANON/MVI_0001.MOV";
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath(clip), mounted.path());
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile(clip), lastPathComponent(mounted.path()));
}

TEST_F(CanonEOS, PartnerOfAClipBelowAMissingFolder) {
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("T/EOS/DCIM/100CANON/MVI_0001.MOV"),
              "T/EOS/");
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile("T/EOS/DCIM/100CANON/MVI_0001.MOV"), "EOS");
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("DCIM/100CANON/MVI_0001.MOV"), "");
}

TEST_F(CanonEOS, PartnerIsSoughtWithCaseAndInNamesThatEndInDcim) {
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("/x/dcim/100CANON/MVI_0001.MOV"),
              "/x/dcim/100CANON");
    const CardTree card{"MYDCIM/MVI_0001.MOV"};
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath(card / "MYDCIM/MVI_0001.MOV"),
              card.path());
}

TEST_F(CanonEOS, PartnerOfAClipOutsideDcimIsTheParents) {
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("/x/clips/MVI_0001.MOV"), "/x/clips");
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile("/x/clips/MVI_0001.MOV"), "clips");
}

TEST_F(CanonEOS, SiblingsShareTheirPartner) {
    const CardTree mounted{"EOS1/DCIM/A/1.MOV", "EOS2/DCIM/A/2.MOV", "3.MOV"};
    EXPECT_TRUE(utility_.filePathsAreVolumeSiblings(
        {mounted / "EOS1/DCIM/A/1.MOV", mounted / "EOS2/DCIM/A/2.MOV"}));
    EXPECT_FALSE(
        utility_.filePathsAreVolumeSiblings({mounted / "EOS1/DCIM/A/1.MOV", "T/EOS/DCIM/A/2.MOV"}));
    EXPECT_FALSE(utility_.filePathsAreVolumeSiblings({}));
}

TEST_F(CanonEOS, TheClipStartsAtTheTimeOfItsCreation) {
    const CardTree card{"DCIM/MVI_0001.MOV"};
    const FilePath clip = card / "DCIM/MVI_0001.MOV";
    const auto created = creationDate(clip);
    ASSERT_TRUE(created);
    const std::string start = utility_.startTimecodeForVideoFile(clip);
    EXPECT_EQ(start, QRXTimecodeUtility::dateToTimecode(created->seconds));
    EXPECT_TRUE(start.ends_with(":00"));
    EXPECT_EQ(utility_.metadataWrapperForVideoFilePath(clip).valueForKey(
                  QRXMediaMetadataStartTimecodeKey),
              start);
}

TEST_F(CanonEOS, AMissingClipHasTheParentsStart) {
    EXPECT_EQ(utility_.startTimecodeForVideoFile("/nowhere/DCIM/MVI_0001.MOV"), "00:00:00:00");
}

TEST_F(CanonEOS, ClipsAreOrderedByTheNumberBehindTheUnderscore) {
    EXPECT_EQ(
        utility_.orderVolumeVideoFiles({"/d/MVI_0010.MOV", "/d/MVI_0002.MOV", "/d/MVI_0100.MOV"}),
        (FilePaths{"/d/MVI_0002.MOV", "/d/MVI_0010.MOV", "/d/MVI_0100.MOV"}));
    EXPECT_EQ(
        utility_.orderVolumeVideoFiles({"/b/MVI_0002.MOV", "/a/MVI_0002.MOV", "/c/MVI_1.MOV"}),
        (FilePaths{"/c/MVI_1.MOV", "/b/MVI_0002.MOV", "/a/MVI_0002.MOV"}));
}

TEST_F(CanonEOS, OneNameWithoutUnderscoreLeavesTheParentsOrder) {
    const FilePaths missing{"/d/MVI_0010.MOV", "/d/clip.MOV", "/d/MVI_0002.MOV"};
    EXPECT_EQ(utility_.orderVolumeVideoFiles(missing), missing) << "no dates to order by";
}

TEST_F(CanonEOS, FormattingRemovesTheFilesBelowDcim) {
    const CardTree card{"DCIM/100CANON/MVI_0001.MOV",
                        "DCIM/100CANON/.hidden",
                        "DCIM/x",
                        "DCIM/empty/",
                        "MISC/M0100.CTG",
                        "notes.txt"};
    EXPECT_TRUE(utility_.formatDriveToMatchValidVolumeStructure(card.path()));
    EXPECT_TRUE(folderExists(card / "DCIM/100CANON"));
    EXPECT_TRUE(folderExists(card / "DCIM/empty"));
    EXPECT_FALSE(itemExists(card / "DCIM/100CANON/MVI_0001.MOV"));
    EXPECT_FALSE(itemExists(card / "DCIM/100CANON/.hidden"));
    EXPECT_FALSE(itemExists(card / "DCIM/x"));
    EXPECT_TRUE(fileExists(card / "MISC/M0100.CTG"));
    EXPECT_TRUE(fileExists(card / "notes.txt"));
    EXPECT_TRUE(utility_.formatDriveToMatchValidVolumeStructure(card.path())) << "empty by now";
}

TEST_F(CanonEOS, KeptFormattingLeavesADcimInSmallLettersAlone) {
    const CardTree card{"dcim/100canon/mvi_0001.mov", "MISC/"};
    EXPECT_TRUE(claims(card / "dcim/100canon/mvi_0001.mov"));
    EXPECT_TRUE(utility_.formatDriveToMatchValidVolumeStructure(card.path()));
    EXPECT_TRUE(fileExists(card / "dcim/100canon/mvi_0001.mov"));
}

TEST_F(CanonEOS, KeptFormattingACardBelowAFolderDcimRemovesEveryFileOnIt) {
    const CardTree above{"DCIM/card/DCIM/MVI_0001.MOV", "DCIM/card/MISC/M0100.CTG",
                         "DCIM/card/notes.txt", "DCIM/beside"};
    EXPECT_TRUE(utility_.formatDriveToMatchValidVolumeStructure(above / "DCIM/card"));
    EXPECT_FALSE(fileExists(above / "DCIM/card/DCIM/MVI_0001.MOV"));
    EXPECT_FALSE(fileExists(above / "DCIM/card/MISC/M0100.CTG"));
    EXPECT_FALSE(fileExists(above / "DCIM/card/notes.txt"));
    EXPECT_TRUE(folderExists(above / "DCIM/card/MISC"));
    EXPECT_TRUE(fileExists(above / "DCIM/beside"));
}

TEST_F(CanonEOS, FormattingNeverLeavesTheDrive) {
    const CardTree outside{"DCIM/clip.MOV"};
    const CardTree card{"DCIM/MVI_0001.MOV"};
    card.link("DCIM/link", outside / "DCIM");
    card.link("DCIM/dangling", "nowhere");
    EXPECT_TRUE(utility_.formatDriveToMatchValidVolumeStructure(card.path()));
    EXPECT_TRUE(fileExists(outside / "DCIM/clip.MOV"));
    EXPECT_FALSE(itemExists(card / "DCIM/link"));

    const CardTree desk{"x"};
    EXPECT_FALSE(
        utility_.formatDriveToMatchValidVolumeStructure(desk.link("drive", outside.path())));
    EXPECT_TRUE(fileExists(outside / "DCIM/clip.MOV"));
}

TEST_F(CanonEOS, ThePlanSaysWhatFormattingRemoves) {
    const CardTree card{"DCIM/100CANON/MVI_0001.MOV", "MISC/M0100.CTG"};
    const auto plan = utility_.resetPlan(card.path());
    ASSERT_TRUE(plan);
    ASSERT_EQ(plan->size(), 1U);
    EXPECT_EQ(plan->front().kind, ResetStep::Kind::remove);
    EXPECT_EQ(plan->front().path, card / "DCIM/100CANON/MVI_0001.MOV");
}

TEST_F(CanonEOS, Constants) {
    EXPECT_EQ(utility_.rootOfUniquePathIdenifier(), "/DCIM/");
    EXPECT_EQ(utility_.pathComponentsIndicatingTheVolumeHasBegun(),
              std::vector<std::string>{"/DCIM/"});
    EXPECT_FALSE(utility_.clipSpanningSupported());
    EXPECT_FALSE(utility_.videoFileIsDropFrame("/x/DCIM/a.MOV"));
}

}  // namespace
}  // namespace qrx
