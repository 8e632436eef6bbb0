#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/FileQuestions.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXJVCQTUtility.h"

namespace qrx {
namespace {

using test::CardTree;
using test::TemporaryFolder;

const std::string kClips = "PRIVATE/JVC/CQAV/CLIP/";
const std::string kInfo = "PRIVATE/JVC/CQAV/INFO/";

std::string sidecar(const std::string& contents) {
    return "<?xml version=\"1.0\"?>\n<Clip>" + contents + "</Clip>\n";
}

class JVCQT : public testing::Test {
protected:
    JVCQT() { services_->mountTable = mounts_; }

    [[nodiscard]] bool claims(const std::string& path) const {
        return utility_.filePathMatchesVolumeStructure(path);
    }
    /// A clip whose sidecar holds `contents`.
    [[nodiscard]] std::string clipWith(const std::string& contents) const {
        folder_.write(kInfo + "ABCD0001_01.XML", sidecar(contents));
        return folder_.write(kClips + "ABCD0001_01.MOV");
    }

    std::shared_ptr<platform::FakeMountTable> mounts_ =
        std::make_shared<platform::FakeMountTable>();
    TemporaryFolder folder_;
    QRXJVCQTUtility utility_;

private:
    platform::ScopedServices services_;
};

TEST_F(JVCQT, AMovInTheClipFolderIsClaimedByItsPath) {
    EXPECT_TRUE(claims("/Volumes/J/PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MOV"));
    EXPECT_TRUE(claims("/Volumes/J/PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.mov"));
    EXPECT_TRUE(claims("PRIVATE/JVC/CQAV/CLIP/a.mov"));
}

TEST_F(JVCQT, OtherPathsAreNot) {
    EXPECT_FALSE(claims("/Volumes/J/private/jvc/cqav/clip/ABCD0001_01.MOV"));
    EXPECT_FALSE(claims("/Volumes/J/PRIVATE/JVC/CQAV/INFO/ABCD0001_01.MOV"));
    EXPECT_FALSE(claims("/Volumes/J/PRIVATE/JVC/CQAV/CLIP/deeper/ABCD0001_01.MOV"));
    EXPECT_FALSE(claims("/Volumes/J/PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MP4"));
    EXPECT_FALSE(claims(""));
}

TEST_F(JVCQT, FolderAndNameNeedOnlyOccurInThePath) {
    EXPECT_TRUE(claims("/x/ANYPRIVATE/JVC/CQAV/CLIP/A_01.MOV"));
    EXPECT_TRUE(claims("/x/PRIVATE/JVC/CQAV/CLIP/A_01.MOV/A_01.MOV"));
    EXPECT_TRUE(claims("/x/PRIVATE/JVC/CQAV/CLIP/A_01.MOV.old/A_01.MOV"));
    EXPECT_FALSE(claims("/x/PRIVATE/JVC/CQAV/CLIP/A_01.mov/A_01.MOV"));
}

TEST_F(JVCQT, TheDriveNeedsFoldersAndIndex) {
    const std::vector<std::string> items{kClips, kInfo, "PRIVATE/JVC/CQAV/MEDIAINF.BAK",
                                         "PRIVATE/JVC/CQAV/MEDIAINF.XML"};
    const auto laidOut = [&](const TemporaryFolder& card, const std::string& missing) {
        for (const std::string& item : items) {
            if (item == missing) continue;
            if (item.ends_with('/')) {
                card.makeFolder(item);
            } else {
                card.write(item);
            }
        }
        mounts_->mountCard(card.path());
        return utility_.drivePathMatchesVolumeStructure(card.path());
    };
    EXPECT_TRUE(laidOut(TemporaryFolder(), "nothing"));
    for (const std::string& item : items) {
        SCOPED_TRACE(item);
        EXPECT_FALSE(laidOut(TemporaryFolder(), item));
    }
    mounts_->mounted.clear();
    EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure(folder_.path()));
}

TEST_F(JVCQT, FoldersWithClips) {
    const CardTree card{"PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.mov"};
    EXPECT_TRUE(utility_.pathContainsVideoFilesMatchingVolumeStructure(card.path()));
    const CardTree empty{"PRIVATE/JVC/CQAV/CLIP/", "PRIVATE/JVC/CQAV/INFO/A.MOV"};
    EXPECT_FALSE(utility_.pathContainsVideoFilesMatchingVolumeStructure(empty.path()));
}

TEST_F(JVCQT, TheSidecarStandsInTheFolderInfo) {
    const std::string clip = clipWith("");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(clip), folder_ / (kInfo + "ABCD0001_01.XML"));
    const std::string lowerCase = folder_.write(kClips + "abcd0002_01.mov");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(lowerCase), std::nullopt);
    folder_.write(kInfo + "abcd0002_01.XML");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(lowerCase),
              folder_ / (kInfo + "abcd0002_01.XML"));
}

TEST_F(JVCQT, TheWordClipInTheFilesNameStays) {
    const std::string clip = folder_.write(kClips + "CLIP0001_01.MOV");
    folder_.write(kInfo + "CLIP0001_01.XML");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(clip), folder_ / (kInfo + "CLIP0001_01.XML"));
}

TEST_F(JVCQT, TheFilesNameGoesFromFoldersOfThatNameToo) {
    const std::string clip = folder_.write("A_01.MOV/" + kClips + "A_01.MOV");
    folder_.write(kInfo + "A_01.XML");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(clip),
              folder_.path() + "//" + kInfo + "A_01.XML");
}

TEST_F(JVCQT, KeptEveryClipInThePathBecomesInfo) {
    folder_.write("CLIP1/" + kClips + "A_01.MOV");
    const std::string clip = folder_ / ("CLIP1/" + kClips + "A_01.MOV");
    folder_.write("CLIP1/" + kInfo + "A_01.XML");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(clip), std::nullopt);
    folder_.write("INFO1/" + kInfo + "A_01.XML");
    EXPECT_EQ(utility_.metadataFilePathForVideoFile(clip),
              folder_ / ("INFO1/" + kInfo + "A_01.XML"));
}

TEST_F(JVCQT, TheUniqueIdentifierIsTheSidecarsUmid) {
    const std::string clip =
        clipWith("<Other umid=\"no\"/><TargetClip name=\"ABCD0001_01\" umid=\"060A2B34\"/>");
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile(clip), "060A2B34");
}

TEST_F(JVCQT, WithoutAUmidItIsTheName) {
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile("/nowhere/ABCD0001_01.MOV"), "ABCD0001_01");
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile(clipWith("<TargetClip name=\"x\"/>")),
              "ABCD0001_01");
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile(clipWith("<TargetClip umid=\"x\"/>")),
              "ABCD0001_01");
}

TEST_F(JVCQT, KeptWithoutDropFrameTheClipCountsAsDropFrame) {
    const std::string clip = clipWith("<TimeCode startTc=\"01000000\"/>");
    EXPECT_EQ(utility_.startTimecodeForVideoFile(clip), "01:00:00;00");
    EXPECT_TRUE(utility_.videoFileIsDropFrame(clip));
}

TEST_F(JVCQT, KeptWithDropFrameTheClipDoesNot) {
    const std::string clip = clipWith("<TimeCode startTc=\"01000000\" dropFrame=\"true\"/>");
    EXPECT_EQ(utility_.startTimecodeForVideoFile(clip), "01:00:00:00");
    EXPECT_FALSE(utility_.videoFileIsDropFrame(clip));
}

TEST_F(JVCQT, KeptAnyTrueInTheTagMeansNoDropFrame) {
    EXPECT_FALSE(utility_.videoFileIsDropFrame(
        clipWith("<TimeCode startTc=\"01000000\" locked=\"true\"/>")));
}

TEST_F(JVCQT, TheFirstTagThatStatesAStartCounts) {
    const std::string clip = clipWith(
        "<TimeCode rate=\"30\"/><TimeCode startTc=\"02000000\"/><TimeCode "
        "startTc=\"03000000\"/>");
    EXPECT_EQ(utility_.startTimecodeForVideoFile(clip), "02:00:00;00");
}

TEST_F(JVCQT, WithoutASidecarOrAValueTheStartIsTheDefault) {
    EXPECT_EQ(utility_.startTimecodeForVideoFile("/nowhere/ABCD0001_01.MOV"), "00:00:00:00");
    EXPECT_FALSE(utility_.videoFileIsDropFrame("/nowhere/ABCD0001_01.MOV"));
    for (const char* contents : {"", "<TimeCode/>", "<TimeCode startTc=\"1\"/>"}) {
        EXPECT_EQ(utility_.startTimecodeForVideoFile(clipWith(contents)), "00:00:00:00")
            << contents;
    }
    EXPECT_FALSE(utility_.videoFileIsDropFrame(clipWith("")));
    EXPECT_TRUE(utility_.videoFileIsDropFrame(clipWith("<TimeCode/>")));
}

TEST_F(JVCQT, ASidecarThatIsNoXmlGivesTheDefaults) {
    const std::string clip = folder_.write(kClips + "ABCD0001_01.MOV");
    folder_.write(kInfo + "ABCD0001_01.XML", std::string(5000, '\xFF'));
    EXPECT_EQ(utility_.startTimecodeForVideoFile(clip), "00:00:00:00");
    EXPECT_FALSE(utility_.videoFileIsDropFrame(clip));
    EXPECT_EQ(utility_.uniqueIdentifierForVideoFile(clip), "ABCD0001_01");
}

TEST_F(JVCQT, MetadataHoldsTheStartTimecode) {
    EXPECT_EQ(utility_.metadataWrapperForVideoFilePath(clipWith("<TimeCode startTc=\"01000000\"/>"))
                  .valueForKey(QRXMediaMetadataStartTimecodeKey),
              "01:00:00;00");
}

TEST_F(JVCQT, PiecesShareTheNameUpToTheUnderscore) {
    EXPECT_TRUE(utility_.clipSpanningSupported());
    EXPECT_EQ(utility_.spanPartnerIdentifierForPath("/x/ABCD0001_02.MOV"), "ABCD0001");
    EXPECT_EQ(utility_.spanPartnerIdentifierForPath("/x/ABCD0001.MOV"), "ABCD0001.MOV");
    EXPECT_EQ(utility_.spanPartnerIdentifierForPath("/x/_02.MOV"), "");
}

TEST_F(JVCQT, PiecesAreSortedByTheirNumber) {
    EXPECT_EQ(
        utility_.sortSpannedClipSeries({"/x/A_10.MOV", "/x/A_02.MOV", "/y/A_02.MOV", "/x/A_1.MOV"}),
        (FilePaths{"/x/A_1.MOV", "/x/A_02.MOV", "/y/A_02.MOV", "/x/A_10.MOV"}));
    EXPECT_EQ(utility_.sortSpannedClipSeries({"/x/A_10.MOV"}), FilePaths{"/x/A_10.MOV"});
    EXPECT_EQ(utility_.sortSpannedClipSeries({"/x/A.MOV"}), FilePaths{"/x/A.MOV"});
    EXPECT_TRUE(utility_.sortSpannedClipSeries({}).empty());
}

TEST_F(JVCQT, ANameWithoutUnderscoreLeavesThePiecesAsTheyAre) {
    const FilePaths files{"/x/A_10.MOV", "/x/clip.MOV", "/x/A_02.MOV"};
    EXPECT_EQ(utility_.sortSpannedClipSeries(files), files);
}

TEST_F(JVCQT, OneSeriesLiesWhereClipsLieAndSharesItsName) {
    const std::string folder = "/Volumes/J/" + kClips;
    EXPECT_TRUE(utility_.filesArePartOfTheSameSpanSeries(
        {folder + "ABCD0001_01.MOV", folder + "ABCD0001_02.MOV"}));
    EXPECT_FALSE(utility_.filesArePartOfTheSameSpanSeries(
        {folder + "ABCD0001_01.MOV", folder + "ABCD0002_01.MOV"}));
    EXPECT_FALSE(utility_.filesArePartOfTheSameSpanSeries(
        {folder + "ABCD0001_01.MOV", "/elsewhere/ABCD0001_02.MOV"}));
    EXPECT_FALSE(utility_.filesArePartOfTheSameSpanSeries(
        {"/elsewhere/ABCD0001_01.MOV", folder + "ABCD0001_02.MOV"}));
    EXPECT_FALSE(utility_.filesArePartOfTheSameSpanSeries({folder + "ABCD0001_01.MOV"}));
    EXPECT_FALSE(utility_.filesArePartOfTheSameSpanSeries({}));
}

TEST_F(JVCQT, ClipsAreOrderedByClipAndPiece) {
    const FilePaths inOrder{"/x/ABCD0001_01.MOV", "/x/ABCD0001_02.MOV", "/x/ABCD0002_01.MOV"};
    FilePaths files = inOrder;
    do {
        EXPECT_EQ(utility_.orderVolumeVideoFiles(files), inOrder);
    } while (std::next_permutation(files.begin(), files.end()));
    EXPECT_EQ(utility_.orderVolumeVideoFiles({"/x/ZZZZ0001_01.MOV", "/x/AAAA0001_01.MOV"}),
              (FilePaths{"/x/ZZZZ0001_01.MOV", "/x/AAAA0001_01.MOV"}));
}

TEST_F(JVCQT, NamesOfAnotherFormLeaveTheParentsOrder) {
    const FilePaths withoutPiece{"/x/ABCD0002_01.MOV", "/x/ABCD0001.MOV"};
    EXPECT_EQ(utility_.orderVolumeVideoFiles(withoutPiece), withoutPiece);
    const FilePaths tooShort{"/x/ABCD0002_01.MOV", "/x/001_01.MOV"};
    EXPECT_EQ(utility_.orderVolumeVideoFiles(tooShort), tooShort);
}

class JVCQTReset : public JVCQT {
protected:
    JVCQTReset() {
        folder_.write(kClips + "ABCD0001_01.MOV");
        folder_.write(kInfo + "ABCD0001_01.XML");
        folder_.write("PRIVATE/JVC/CQAV/MEDIAINF.BAK");
        folder_.write("PRIVATE/JVC/CQAV/MEDIAINF.XML",
                      "<?xml version=\"1.0\"?>\n<Media><Card id=\"7\"/><ClipInfo><Clip "
                      "name=\"ABCD0001_01\"/></ClipInfo></Media>");
        folder_.write("PRIVATE/OTHER/CLIP/file");
        folder_.write("notes.txt");
    }
    [[nodiscard]] bool reset() const {
        return utility_.formatDriveToMatchValidVolumeStructure(folder_.path());
    }
    [[nodiscard]] bool exists(const std::string& name) const { return itemExists(folder_ / name); }
};

TEST_F(JVCQTReset, KeepsTheFoldersAndTheEmptiedIndex) {
    EXPECT_TRUE(reset());
    EXPECT_TRUE(exists(kClips));
    EXPECT_TRUE(exists(kInfo));
    EXPECT_FALSE(exists(kClips + "ABCD0001_01.MOV"));
    EXPECT_FALSE(exists(kInfo + "ABCD0001_01.XML"));
    EXPECT_FALSE(exists("PRIVATE/JVC/CQAV/MEDIAINF.BAK"));
    EXPECT_FALSE(exists("PRIVATE/OTHER"));
    EXPECT_FALSE(exists("notes.txt"));
    const std::string index = test::fileContents(folder_ / "PRIVATE/JVC/CQAV/MEDIAINF.XML");
    EXPECT_NE(index.find("<ClipInfo></ClipInfo>"), std::string::npos) << index;
    EXPECT_NE(index.find("id=\"7\""), std::string::npos) << index;
    EXPECT_EQ(index.find("ABCD0001_01"), std::string::npos) << index;
}

TEST_F(JVCQTReset, KeptAfterwardsTheDriveTestMissesTheIndexCopy) {
    mounts_->mountCard(folder_.path());
    EXPECT_TRUE(utility_.drivePathMatchesVolumeStructure(folder_.path()));
    EXPECT_TRUE(reset());
    EXPECT_FALSE(utility_.drivePathMatchesVolumeStructure(folder_.path()));
}

TEST_F(JVCQTReset, FoldersOfTheseNamesStayWhereverTheyAre) {
    folder_.write("JVC/INFO/file");
    EXPECT_TRUE(reset());
    EXPECT_TRUE(exists("JVC/INFO"));
    EXPECT_FALSE(exists("JVC/INFO/file"));
}

TEST_F(JVCQTReset, AFileOfAFoldersNameGoes) {
    folder_.write("CLIP");
    EXPECT_TRUE(reset());
    EXPECT_FALSE(exists("CLIP"));
}

TEST_F(JVCQTReset, AnIndexThatIsNoXmlEndsItWithNo) {
    folder_.write("PRIVATE/JVC/CQAV/MEDIAINF.XML", "no xml");
    EXPECT_FALSE(reset());
    EXPECT_EQ(test::fileContents(folder_ / "PRIVATE/JVC/CQAV/MEDIAINF.XML"), "no xml");
    EXPECT_TRUE(exists("PRIVATE/OTHER")) << "what comes after the failure stays";
}

TEST_F(JVCQTReset, LinksGoAndTheirTargetsStay) {
    const CardTree outside{"folder/file", "MEDIAINF.XML"};
    folder_.link("CLIP", outside / "folder");
    folder_.link("link", outside / "folder");
    folder_.link("PRIVATE/MEDIAINF.XML", outside / "MEDIAINF.XML");
    folder_.link("dangling", "nowhere");
    EXPECT_TRUE(reset());
    EXPECT_FALSE(exists("CLIP"));
    EXPECT_FALSE(exists("link"));
    EXPECT_FALSE(exists("PRIVATE/MEDIAINF.XML"));
    EXPECT_TRUE(itemExists(outside / "folder/file"));
    EXPECT_EQ(test::fileContents(outside / "MEDIAINF.XML"), "");
}

TEST_F(JVCQTReset, ADriveThatIsALinkIsRefused) {
    const TemporaryFolder desk;
    EXPECT_FALSE(
        utility_.formatDriveToMatchValidVolumeStructure(desk.link("drive", folder_.path())));
    EXPECT_TRUE(exists("notes.txt"));
}

TEST_F(JVCQTReset, AnEmptyDriveIsResetAlready) {
    EXPECT_TRUE(utility_.formatDriveToMatchValidVolumeStructure(TemporaryFolder().path()));
}

TEST_F(JVCQT, Constants) {
    EXPECT_EQ(utility_.rootOfUniquePathIdenifier(), "CQAV");
    EXPECT_EQ(utility_.pathComponentsIndicatingTheVolumeHasBegun(),
              std::vector<std::string>{"/PRIVATE/JVC/CQAV/CLIP/"});
    EXPECT_EQ(utility_.volumePartnerIdentifierForFilePath("/x/y/A_01.MOV"), "/x/y");
}

}  // namespace
}  // namespace qrx
