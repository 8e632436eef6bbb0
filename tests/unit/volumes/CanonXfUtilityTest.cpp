#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "unit/readers/MxfTestSupport.h"
#include "volumes/QRXCanonXFUtility.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXMXFUtility.h"

namespace qrx {
namespace {

struct PathCase {
    const char* name;
    const char* path;
    bool claimed;
};

constexpr PathCase kPaths[] = {
    {"ClipOnACard", "/Volumes/X/CONTENTS/CLIPS001/AA0001/AA000101.MXF", true},
    {"FlatFolder", "/Volumes/X/CONTENTS/CLIPS001/AA000101.MXF", true},
    {"LowerCaseExtension", "/Volumes/X/CONTENTS/CLIPS001/AA0001/AA000101.mxf", true},
    {"LowerCaseFolders", "/Volumes/X/contents/clips001/AA0001/AA000101.MXF", true},
    {"NoNumber", "/Volumes/X/CONTENTS/CLIPS/A.MXF", true},
    {"FolderIsClipNotClips", "/Volumes/X/CONTENTS/CLIP/A.MXF", false},
    {"RelativePath", "CONTENTS/CLIPS001/AA0001/AA000101.MXF", false},
    {"SidecarIsNotAClip", "/Volumes/X/CONTENTS/CLIPS001/AA0001/AA000101.XML", false},
    {"NothingButExtension", "/Volumes/X/CONTENTS/CLIPS001/.MXF", true},
    {"TrailingSlash", "/Volumes/X/CONTENTS/CLIPS001/A.MXF/", false},
    {"LooseFile", "/Volumes/X/A.MXF", false},
    {"EmptyPath", "", false},
};

class CanonXfPath : public testing::TestWithParam<PathCase> {};

TEST_P(CanonXfPath, IsClaimedByPathAlone) {
    EXPECT_EQ(QRXCanonXFUtility().filePathMatchesVolumeStructure(GetParam().path),
              GetParam().claimed);
}

INSTANTIATE_TEST_SUITE_P(Table, CanonXfPath, testing::ValuesIn(kPaths),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CanonXfUtility, KeptNameTestNeverRejectsWhatPassedTheSuffixTest) {
    for (const PathCase& row : kPaths) {
        const FilePath file = row.path;
        ExaminedPath path(file);
        const StructureFinding found = QRXCanonXFUtility().findStructure(path);
        if (found.decisive != nullptr) {
            EXPECT_NE(found.decisive->phrase, "the file's name contains XF") << row.name;
        }
    }
}

TEST(CanonXfUtility, TextFileInTheLayoutIsClaimedByPathButIsNoMxf) {
    const test::TemporaryFolder card;
    const FilePath clip = card.write("CONTENTS/CLIPS001/AA0001/AA000101.MXF", "words");
    EXPECT_TRUE(QRXCanonXFUtility().filePathMatchesVolumeStructure(clip));
    EXPECT_FALSE(QRXMXFUtility().filePathMatchesVolumeStructure(clip));
}

TEST(CanonXfUtility, TellsWhereTheCardsStructureBegins) {
    EXPECT_EQ(QRXCanonXFUtility().rootOfUniquePathIdenifier(), "CONTENTS");
}

TEST(CanonXfUtility, KeptSecondFolderIsThatOfXdcamEx) {
    EXPECT_EQ(QRXCanonXFUtility().pathComponentsIndicatingTheVolumeHasBegun(),
              (std::vector<std::string>{"/CONTENTS/CLIPS/", "/BPAV/CLPR/"}));
}

TEST(CanonXfUtility, MxfQuestionsAskItsOwnPathTest) {
    using namespace test;
    const test::TemporaryFolder card;
    const std::string items = asText(joined({startItem(90000), baseItem(30), dropFrameItem(1)}));
    const FilePath clip = card.write("CONTENTS/CLIPS001/AA000101.MXF", items);
    const FilePath loose = card.write("AA000101.MXF", items);
    const QRXCanonXFUtility utility;
    EXPECT_EQ(utility.framerateForVideoFile(clip), QRXVideoFrameRate30);
    EXPECT_EQ(utility.startTimecodeForVideoFile(clip), "00:50:03;13");
    EXPECT_TRUE(utility.videoFileIsDropFrame(clip));
    EXPECT_EQ(utility.framerateForVideoFile(loose), QRXVideoFrameRateUndefined);
    EXPECT_EQ(utility.startTimecodeForVideoFile(loose), "00:00:00:00");
    EXPECT_FALSE(utility.videoFileIsDropFrame(loose));
}

// ---- sidecar

TEST(CanonXfSidecar, IsTheFirstXmlFileWhoseNameOccursInTheClips) {
    const test::CardTree card{"C/A001C002.MXF", "C/A001C002.XML", "C/A001.XML", "C/B.XML"};
    EXPECT_EQ(QRXCanonXFUtility().metadataFilePathForVideoFile(card / "C/A001C002.MXF"),
              card / "C/A001.XML");
}

TEST(CanonXfSidecar, ExtensionMayBeOfAnyCaseAndTheNameNot) {
    const test::CardTree small{"C/A001.MXF", "C/A001.xml"};
    const test::CardTree other{"C/A001.MXF", "C/a001.XML"};
    EXPECT_EQ(QRXCanonXFUtility().metadataFilePathForVideoFile(small / "C/A001.MXF"),
              small / "C/A001.xml");
    EXPECT_FALSE(QRXCanonXFUtility().metadataFilePathForVideoFile(other / "C/A001.MXF"));
}

TEST(CanonXfSidecar, NothingWithoutFolderOrFile) {
    const test::CardTree card{"C/A001.MXF", "empty/"};
    card.link("L/A001.XML", "gone");
    EXPECT_FALSE(QRXCanonXFUtility().metadataFilePathForVideoFile(card / "C/A001.MXF"));
    EXPECT_FALSE(QRXCanonXFUtility().metadataFilePathForVideoFile(card / "empty/A001.MXF"));
    EXPECT_FALSE(QRXCanonXFUtility().metadataFilePathForVideoFile(card / "none/A001.MXF"));
    EXPECT_FALSE(QRXCanonXFUtility().metadataFilePathForVideoFile(card / "L/A001.MXF"));
}

TEST(CanonXfSidecar, ClipIsNotItsOwnSidecar) {
    const test::CardTree card{"C/A001.XML"};
    EXPECT_FALSE(QRXCanonXFUtility().metadataFilePathForVideoFile(card / "C/A001.XML"));
}

TEST(CanonXfSidecar, KeptFileOfThatNameInTheCurrentFolderComesFirst) {
    const test::CardTree card{"C/A001.MXF", "C/A001.XML"};
    const test::CardTree current{"A001.XML"};
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(current.path());
    const auto sidecar = QRXCanonXFUtility().metadataFilePathForVideoFile(card / "C/A001.MXF");
    std::filesystem::current_path(before);
    EXPECT_EQ(sidecar, "A001.XML");
}

// ---- order and siblings

TEST(CanonXfOrder, IsByTheNumberInTheName) {
    EXPECT_EQ(QRXCanonXFUtility().orderVolumeVideoFiles({"/x/AA000201.MXF", "/x/AA000102.MXF"}),
              (FilePaths{"/x/AA000102.MXF", "/x/AA000201.MXF"}));
}

TEST(CanonXfSiblings, HaveTheSameGrandparent) {
    const QRXCanonXFUtility utility;
    const FilePath one = "/V/X/CONTENTS/CLIPS001/AA0001/AA000101.MXF";
    const FilePath two = "/V/X/CONTENTS/CLIPS001/AA0002/AA000201.MXF";
    const FilePath three = "/V/X/CONTENTS/CLIPS002/AA0001/AA000101.MXF";
    EXPECT_EQ(utility.volumePartnerIdentifierForFilePath(one), "/V/X/CONTENTS/CLIPS001");
    EXPECT_TRUE(utility.filePathsAreVolumeSiblings({one, two}));
    EXPECT_TRUE(utility.filePathsAreVolumeSiblings({one}));
    EXPECT_FALSE(utility.filePathsAreVolumeSiblings({one, two, three}));
    EXPECT_FALSE(utility.filePathsAreVolumeSiblings({}));
}

// ---- precedence

TEST(CanonXfPrecedence, CardLayoutWinsOverTheLooseMxf) {
    const test::TemporaryFolder card;
    const std::string mxf = test::asText(
        test::bytes({0x06, 0x0E, 0x2B, 0x34, 0x02, 0x05, 0x01, 0x01, 0x0D, 0x01, 0x02, 0x00}));
    const FilePath clip = card.write("CONTENTS/CLIPS001/AA0001/AA000101.MXF", mxf);
    const FilePath loose = card.write("AA000101.MXF", mxf);
    ASSERT_TRUE(QRXMXFUtility().filePathMatchesVolumeStructure(clip));
    ASSERT_TRUE(QRXCanonXFUtility().filePathMatchesVolumeStructure(clip));
    const auto aggregate = QRXHDMediaVolumeAggregate::hdAggregate();
    EXPECT_EQ(aggregate.utilityForFileAtPath(clip).volumeTitle(), "Canon XF");
    EXPECT_EQ(aggregate.utilityForFileAtPath(loose).volumeTitle(), "MXF");
}

TEST(CanonXfPrecedence, ConstraintToTheMxfUtilityDropsItsClips) {
    const test::CardTree card{"CONTENTS/CLIPS001/AA0001/AA000101.MXF"};
    const FilePaths clips{card / "CONTENTS/CLIPS001/AA0001/AA000101.MXF"};
    const QRXMXFUtility mxf;
    const QRXCanonXFUtility canonXf;
    const auto aggregate = QRXHDMediaVolumeAggregate::hdAggregate();
    EXPECT_TRUE(aggregate.hdFilePathsInListOfFileSystemPaths(clips, {{&mxf}}).empty());
    EXPECT_EQ(aggregate.hdFilePathsInListOfFileSystemPaths(clips, {{&canonXf}}), clips);
}

}  // namespace
}  // namespace qrx
