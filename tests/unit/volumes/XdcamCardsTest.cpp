// The XDCAM layouts that keep each clip in a folder of its own: Sony's EX and JVC's MP4 cards.

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/FileQuestions.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXJVCMP4Utility.h"
#include "volumes/QRXSonyXDCAMExUtility.h"

namespace qrx {
namespace {

const QRXSonyXDCAMExUtility& ex() {
    return QRXSonyXDCAMExUtility::sharedInstance();
}
const QRXJVCMP4Utility& jvc() {
    return QRXJVCMP4Utility::sharedInstance();
}

// ---- paths

struct PathCase {
    const char* name;
    const char* path;
    bool ex;
    bool jvc;
};

constexpr PathCase kPaths[] = {
    {"ExClip", "/V/X/BPAV/CLPR/708_0001_01/708_0001_01.MP4", true, false},
    {"JvcClip", "/V/X/PRIVATE/JVC/BPAV/CLPR/AB0001_01/AB0001_01.MP4", true, true},
    {"RelativeJvcClip", "PRIVATE/JVC/BPAV/CLPR/AB0001_01/AB0001_01.MP4", true, true},
    {"LowerCaseExtension", "/V/X/BPAV/CLPR/A/A.mp4", true, false},
    {"LowerCaseFolders", "/V/X/bpav/clpr/A/A.MP4", false, false},
    {"FileOfAnotherName", "/V/X/BPAV/CLPR/A/B.MP4", true, false},
    {"DirectlyInTheStore", "/V/X/BPAV/CLPR/A.MP4", false, false},
    {"TooDeep", "/V/X/BPAV/CLPR/A/B/C.MP4", false, false},
    {"FolderOfTheSameNameBelow", "/V/X/BPAV/CLPR/A/A/C.MP4", true, false},
    {"Sidecar", "/V/X/BPAV/CLPR/A/AM01.XML", false, false},
    {"Loose", "/V/X/A/A.MP4", false, false},
    {"EmptyPath", "", false, false},
};

class XdcamCardPath : public testing::TestWithParam<PathCase> {};

TEST_P(XdcamCardPath, IsClaimedByPathAlone) {
    EXPECT_EQ(ex().filePathMatchesVolumeStructure(GetParam().path), GetParam().ex);
    EXPECT_EQ(jvc().filePathMatchesVolumeStructure(GetParam().path), GetParam().jvc);
}

INSTANTIATE_TEST_SUITE_P(Table, XdcamCardPath, testing::ValuesIn(kPaths),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(XdcamCards, JvcWinsWhereBothLayoutsOverlap) {
    const FilePath clip = "/V/X/PRIVATE/JVC/BPAV/CLPR/AB0001_01/AB0001_01.MP4";
    ASSERT_TRUE(ex().filePathMatchesVolumeStructure(clip));
    ASSERT_TRUE(jvc().filePathMatchesVolumeStructure(clip));
    const auto aggregate = QRXHDMediaVolumeAggregate::hdAggregate();
    EXPECT_EQ(aggregate.utilityForFileAtPath(clip).volumeTitle(), "JVC-MP4");
    EXPECT_EQ(aggregate.utilityForFileAtPath("/V/X/BPAV/CLPR/A/A.MP4").volumeTitle(),
              "Sony XDCAM EX");
}

TEST(XdcamCards, TellWhereTheCardsStructureBegins) {
    EXPECT_EQ(ex().rootOfUniquePathIdenifier(), "BPAV");
    EXPECT_EQ(jvc().rootOfUniquePathIdenifier(), "BPAV");
    EXPECT_EQ(ex().pathComponentsIndicatingTheVolumeHasBegun(),
              std::vector<std::string>{"/BPAV/CLPR/"});
    EXPECT_EQ(jvc().pathComponentsIndicatingTheVolumeHasBegun(),
              std::vector<std::string>{"/PRIVATE/JVC/BPAV/CLPR/"});
}

TEST(XdcamCards, FolderHoldsClipsBelowTheStore) {
    const test::CardTree card{"BPAV/CLPR/A/A.MP4"};
    const test::CardTree empty{"BPAV/CLPR/A/AM01.XML"};
    EXPECT_TRUE(ex().pathContainsVideoFilesMatchingVolumeStructure(card.path()));
    EXPECT_FALSE(ex().pathContainsVideoFilesMatchingVolumeStructure(empty.path()));
}

TEST(XdcamCards, KeptJvcFolderTestNeverSucceeds) {
    const test::CardTree card{"PRIVATE/JVC/BPAV/CLPR/A/A.MP4", "PRIVATE/JVC/BPAV/CLPR/B.MP4"};
    EXPECT_FALSE(jvc().pathContainsVideoFilesMatchingVolumeStructure(card.path()));
}

// ---- order and spanned recordings

TEST(XdcamExOrder, IsByTakeThenPiece) {
    EXPECT_EQ(ex().orderVolumeVideoFiles({"/x/708_0002_02.MP4", "/x/708_0001_01.MP4",
                                          "/x/708_0002_01.MP4", "/x/709_0001_01.MP4"}),
              (FilePaths{"/x/708_0001_01.MP4", "/x/709_0001_01.MP4", "/x/708_0002_01.MP4",
                         "/x/708_0002_02.MP4"}));
}

TEST(XdcamExOrder, IsTheBaseObjectsWhereANameHasTwoPiecesOnly) {
    const test::TemporaryFolder folder;
    const FilePaths files{folder.write("708_0002_01.MP4"), folder.write("708_0001.MP4"),
                          folder.write("708_0001_01.MP4")};
    EXPECT_EQ(ex().orderVolumeVideoFiles(files),
              QRXHDMediaVolumeUtilityObject::sharedInstance().orderVolumeVideoFiles(files));
}

TEST(JvcMp4Order, IsByTheLastFourCharactersThenPiece) {
    EXPECT_EQ(
        jvc().orderVolumeVideoFiles({"/x/ZZ0003_01.MP4", "/x/AA0001_02.MP4", "/x/BB0001_01.MP4"}),
        (FilePaths{"/x/BB0001_01.MP4", "/x/AA0001_02.MP4", "/x/ZZ0003_01.MP4"}));
}

TEST(JvcMp4Order, IsTheBaseObjectsWhereANameLacksItsNumbers) {
    const test::TemporaryFolder folder;
    for (const char* odd : {"ABC_01.MP4", "AB0001.MP4"}) {
        const FilePaths files{folder.write("AB0002_01.MP4"), folder.write(odd),
                              folder.write("AB0001_01.MP4")};
        EXPECT_EQ(jvc().orderVolumeVideoFiles(files),
                  QRXHDMediaVolumeUtilityObject::sharedInstance().orderVolumeVideoFiles(files));
    }
}

TEST(XdcamSpan, SeriesIsSortedByNameWhateverItsCase) {
    const FilePaths files{"/x/708_0001B.MP4", "/x/708_0001_02.MP4", "/x/708_0001_01.mp4"};
    const FilePaths sorted{"/x/708_0001_01.mp4", "/x/708_0001_02.MP4", "/x/708_0001B.MP4"};
    EXPECT_EQ(ex().sortSpannedClipSeries(files), sorted);
    EXPECT_EQ(jvc().sortSpannedClipSeries(files), sorted);
    EXPECT_EQ(ex().sortSpannedClipSeries({"/x/b", "/y/B", "/x/a"}),
              (FilePaths{"/x/a", "/x/b", "/y/B"}));
    EXPECT_TRUE(ex().clipSpanningSupported());
    EXPECT_TRUE(jvc().clipSpanningSupported());
}

TEST(XdcamSpan, ExKeyIsTheFirstEightCharacters) {
    EXPECT_EQ(ex().spanPartnerIdentifierForPath("/x/708_0001_01.MP4"), "708_0001");
    EXPECT_FALSE(ex().spanPartnerIdentifierForPath("/x/708.MP4"));
    EXPECT_EQ(ex().spanPartnerIdentifierForPath("/x/7\xC3\xA9"
                                                "8_0001_01.MP4"),
              "7\xC3\xA9"
              "8_0001");
}

TEST(XdcamSpan, JvcKeyIsTheNameUpToItsFirstUnderscore) {
    EXPECT_EQ(jvc().spanPartnerIdentifierForPath("/x/AB0001_01_02.MP4"), "AB0001");
    EXPECT_EQ(jvc().spanPartnerIdentifierForPath("/x/AB0001.MP4"), "AB0001.MP4");
}

TEST(XdcamSpan, SeriesIsOfClipsWithOneKey) {
    const FilePath one = "/x/BPAV/CLPR/708_0001_01/708_0001_01.MP4";
    const FilePath two = "/x/BPAV/CLPR/708_0001_02/708_0001_02.MP4";
    EXPECT_TRUE(ex().filesArePartOfTheSameSpanSeries({one, two}));
    EXPECT_FALSE(ex().filesArePartOfTheSameSpanSeries({one}));
    EXPECT_FALSE(ex().filesArePartOfTheSameSpanSeries({one, "/x/708_0001_02.MP4"}));
    EXPECT_FALSE(
        ex().filesArePartOfTheSameSpanSeries({one, "/x/BPAV/CLPR/708_0002_01/708_0002_01.MP4"}));
    const FilePath jvcOne = "/x/PRIVATE/JVC/BPAV/CLPR/AB0001_01/AB0001_01.MP4";
    const FilePath jvcTwo = "/x/PRIVATE/JVC/BPAV/CLPR/AB0001_02/AB0001_02.MP4";
    EXPECT_TRUE(jvc().filesArePartOfTheSameSpanSeries({jvcOne, jvcTwo}));
    EXPECT_FALSE(jvc().filesArePartOfTheSameSpanSeries({jvcOne}));
    EXPECT_FALSE(jvc().filesArePartOfTheSameSpanSeries({one, two}));
}

TEST(XdcamSiblings, HaveTheSameGrandparent) {
    const FilePath one = "/x/BPAV/CLPR/A/A.MP4";
    const FilePath two = "/x/BPAV/CLPR/B/B.MP4";
    for (const QRXHDMediaVolumeUtilityObject* utility :
         {static_cast<const QRXHDMediaVolumeUtilityObject*>(&ex()),
          static_cast<const QRXHDMediaVolumeUtilityObject*>(&jvc())}) {
        EXPECT_EQ(utility->volumePartnerIdentifierForFilePath(one), "/x/BPAV/CLPR");
        EXPECT_TRUE(utility->filePathsAreVolumeSiblings({one, two}));
        EXPECT_FALSE(utility->filePathsAreVolumeSiblings({one, "/y/BPAV/CLPR/B/B.MP4"}));
        EXPECT_FALSE(utility->filePathsAreVolumeSiblings({}));
    }
}

// ---- drives

constexpr const char* kCueUp =
    "<?xml version=\"1.0\"?><CueUp><history><entry>1</entry></history></CueUp>";
constexpr const char* kMediaPro =
    "<?xml version=\"1.0\"?><MediaProfile><Properties/><Contents><Material/></Contents>"
    "</MediaProfile>";

class XdcamDrive : public testing::Test {
protected:
    XdcamDrive() {
        services_->mountTable = mounts_;
        mounts_->mountCard(card_.path());
    }

    void fill(const std::string& root) const {
        card_.write(root + "/CLPR/A/A.MP4", "clip");
        card_.write(root + "/TAKR/T/T.SMI", "take");
        card_.write(root + "/CUEUP.XML", kCueUp);
        card_.write(root + "/MEDIAPRO.XML", kMediaPro);
    }

    platform::ScopedServices services_;
    std::shared_ptr<platform::FakeMountTable> mounts_ =
        std::make_shared<platform::FakeMountTable>();
    test::TemporaryFolder card_;
};

TEST_F(XdcamDrive, ExNeedsItsFoldersAndIndexes) {
    fill("BPAV");
    EXPECT_TRUE(ex().drivePathMatchesVolumeStructure(card_.path()));
    EXPECT_FALSE(jvc().drivePathMatchesVolumeStructure(card_.path()));
    mounts_->mounted.clear();
    EXPECT_FALSE(ex().drivePathMatchesVolumeStructure(card_.path()));
}

TEST_F(XdcamDrive, ExWithoutTakesIsNone) {
    card_.makeFolder("BPAV/CLPR");
    card_.write("BPAV/CUEUP.XML");
    card_.write("BPAV/MEDIAPRO.XML");
    EXPECT_FALSE(ex().drivePathMatchesVolumeStructure(card_.path()));
}

TEST_F(XdcamDrive, JvcStandsBelowPrivate) {
    fill("PRIVATE/JVC/BPAV");
    EXPECT_TRUE(jvc().drivePathMatchesVolumeStructure(card_.path()));
    EXPECT_FALSE(ex().drivePathMatchesVolumeStructure(card_.path()));
}

TEST_F(XdcamDrive, ExResetEmptiesTheStoreAndTheIndexes) {
    fill("BPAV");
    card_.write("BPAV/MEDIAPRO.BAK", "old");
    card_.write("other", "stays");
    EXPECT_TRUE(ex().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_TRUE(folderExists(card_ / "BPAV/CLPR"));
    EXPECT_TRUE(folderExists(card_ / "BPAV/TAKR"));
    EXPECT_FALSE(itemExists(card_ / "BPAV/CLPR/A"));
    EXPECT_FALSE(itemExists(card_ / "BPAV/TAKR/T"));
    EXPECT_FALSE(itemExists(card_ / "BPAV/MEDIAPRO.BAK"));
    EXPECT_EQ(test::fileContents(card_ / "other"), "stays");
    const std::string cueUp = test::fileContents(card_ / "BPAV/CUEUP.XML");
    EXPECT_NE(cueUp.find("<history>"), std::string::npos);
    EXPECT_EQ(cueUp.find("<entry>"), std::string::npos);
    const std::string mediaPro = test::fileContents(card_ / "BPAV/MEDIAPRO.XML");
    EXPECT_NE(mediaPro.find("<Properties>"), std::string::npos);
    EXPECT_EQ(mediaPro.find("<Contents>"), std::string::npos);
    EXPECT_TRUE(ex().drivePathMatchesVolumeStructure(card_.path()));
    EXPECT_TRUE(ex().formatDriveToMatchValidVolumeStructure(card_.path())) << "run again";
}

TEST_F(XdcamDrive, ExResetStopsAtTheFirstStepThatFails) {
    fill("BPAV");
    card_.write("BPAV/CUEUP.XML", std::string(16, '\xFF'));
    EXPECT_FALSE(ex().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_FALSE(itemExists(card_ / "BPAV/CLPR/A"));
    EXPECT_EQ(test::fileContents(card_ / "BPAV/CUEUP.XML"), std::string(16, '\xFF'));
    EXPECT_EQ(test::fileContents(card_ / "BPAV/MEDIAPRO.XML"), kMediaPro);
}

TEST_F(XdcamDrive, ExResetWithoutAStoreTouchesNothing) {
    card_.write("BPAV/CUEUP.XML", kCueUp);
    EXPECT_FALSE(ex().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_EQ(test::fileContents(card_ / "BPAV/CUEUP.XML"), kCueUp);
}

TEST_F(XdcamDrive, ExResetNeverLeavesTheDrive) {
    const test::CardTree outside{"CLPR/kept", "TAKR/kept"};
    card_.link("BPAV", outside.path());
    EXPECT_FALSE(ex().resetPlan(card_.path()));
    EXPECT_FALSE(ex().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_TRUE(itemExists(outside / "CLPR/kept"));

    const test::TemporaryFolder elsewhere;
    const FilePath link = elsewhere.link("drive", card_.path());
    EXPECT_FALSE(ex().resetPlan(link));
    EXPECT_FALSE(jvc().resetPlan(link));
}

TEST_F(XdcamDrive, ExResetTakesAwayAStoreThatIsALinkAndNotItsTarget) {
    const test::CardTree outside{"kept"};
    fill("BPAV");
    std::filesystem::remove_all(card_ / "BPAV/CLPR");
    card_.link("BPAV/CLPR", outside.path());
    EXPECT_TRUE(ex().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_TRUE(itemExists(outside / "kept"));
    EXPECT_FALSE(isLink(card_ / "BPAV/CLPR"));
    EXPECT_TRUE(folderExists(card_ / "BPAV/CLPR"));
}

TEST_F(XdcamDrive, JvcResetLeavesTheSkeleton) {
    fill("PRIVATE/JVC/BPAV");
    EXPECT_TRUE(jvc().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_TRUE(folderExists(card_ / "PRIVATE/JVC/BPAV/CLPR"));
    EXPECT_TRUE(folderExists(card_ / "PRIVATE/JVC/BPAV/TAKR"));
    EXPECT_FALSE(itemExists(card_ / "PRIVATE/JVC/BPAV/CLPR/A"));
    EXPECT_FALSE(itemExists(card_ / "PRIVATE/JVC/BPAV/TAKR/T"));
    EXPECT_EQ(test::fileContents(card_ / "PRIVATE/JVC/BPAV/CUEUP.XML").find("<entry>"),
              std::string::npos);
    EXPECT_EQ(test::fileContents(card_ / "PRIVATE/JVC/BPAV/MEDIAPRO.XML").find("<Contents>"),
              std::string::npos);
    EXPECT_TRUE(jvc().drivePathMatchesVolumeStructure(card_.path()));
}

TEST_F(XdcamDrive, KeptJvcResetTakesAwayWhatIsOutsideTheLayoutToo) {
    fill("PRIVATE/JVC/BPAV");
    card_.write("DCIM/photo.JPG");
    card_.write("notes");
    card_.write("Other/PRIVATE/x");
    EXPECT_TRUE(jvc().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_FALSE(itemExists(card_ / "DCIM"));
    EXPECT_FALSE(itemExists(card_ / "notes"));
    EXPECT_FALSE(itemExists(card_ / "Other"));
}

TEST_F(XdcamDrive, JvcResetNeverFollowsALink) {
    const test::CardTree outside{"CLPR/kept", "CUEUP.XML"};
    fill("PRIVATE/JVC/BPAV");
    card_.link("PRIVATE/JVC/TAKR", outside / "CLPR");
    card_.link("PRIVATE/CUEUP.XML", outside / "CUEUP.XML");
    card_.link("PRIVATE/dangling", "nowhere");
    EXPECT_TRUE(jvc().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_TRUE(itemExists(outside / "CLPR/kept"));
    EXPECT_TRUE(itemExists(outside / "CUEUP.XML"));
    EXPECT_FALSE(isLink(card_ / "PRIVATE/JVC/TAKR"));
    EXPECT_FALSE(isLink(card_ / "PRIVATE/CUEUP.XML"));
    EXPECT_TRUE(isLink(card_ / "PRIVATE/dangling")) << "nothing exists there";
}

TEST_F(XdcamDrive, JvcResetStopsAtAnIndexThatIsNoXml) {
    fill("PRIVATE/JVC/BPAV");
    card_.write("PRIVATE/JVC/BPAV/CUEUP.XML", "broken");
    card_.write("zzz", "comes after");
    EXPECT_FALSE(jvc().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_TRUE(itemExists(card_ / "zzz"));
}

}  // namespace
}  // namespace qrx
