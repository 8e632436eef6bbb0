#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/ReportingTool.h"
#include "support/TemporaryFolder.h"
#include "unit/readers/MxfTestSupport.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXSonyXDCAMHDUtility.h"
#include "volumes/QRXXDCAMUtility.h"

namespace qrx {
namespace {

constexpr const char* kSidecar = R"(<?xml version="1.0" encoding="UTF-8"?>
<NonRealTimeMeta xmlns="urn:schemas-professionalDisc:nonRealTimeMeta:ver.2.00">
  <TargetMaterial umidRef="060A2B340101010501010D43130000001234"/>
  <LtcChangeTable tcFps="30" halfStep="false">
    <LtcChange frameCount="0" value="13524612" status="increment"/>
    <LtcChange frameCount="250" value="08004700" status="end"/>
  </LtcChangeTable>
  <CreationDate value="2013-05-01T10:00:00+02:00"/>
  <VideoFormat>
    <VideoFrame videoCodec="MPEG2HD422_1920_1080_MP@HL" captureFps="59.94i" formatFps="25p"/>
  </VideoFormat>
</NonRealTimeMeta>
)";

const QRXXDCAMUtility& xdcam() {
    return QRXXDCAMUtility::sharedInstance();
}
const QRXSonyXDCAMHDUtility& hd() {
    return QRXSonyXDCAMHDUtility::sharedInstance();
}

class XdcamClip : public testing::Test {
protected:
    void writeSidecar(const std::string& xml) const { card_.write("Clip/C0001M01.XML", xml); }

    test::ReportingTool tool_{"no report"};
    test::TemporaryFolder card_;
    FilePath clip_ = card_.write("Clip/C0001.MXF");
};

// ---- the sidecar file

TEST_F(XdcamClip, SidecarIsTheFirstXmlFileThatBearsTheClipsKey) {
    EXPECT_FALSE(xdcam().metadataFilePathForVideoFile(clip_));
    card_.write("Clip/C0002M01.XML");
    EXPECT_FALSE(xdcam().metadataFilePathForVideoFile(clip_));
    card_.write("Clip/C0001M01.xml");
    EXPECT_EQ(xdcam().metadataFilePathForVideoFile(clip_), card_ / "Clip/C0001M01.xml");
    card_.write("Clip/C0001A.XML");
    EXPECT_EQ(xdcam().metadataFilePathForVideoFile(clip_), card_ / "Clip/C0001A.XML");
}

TEST_F(XdcamClip, SidecarsExtensionIsOfOneCase) {
    card_.write("Clip/C0001M01.Xml");
    EXPECT_FALSE(xdcam().metadataFilePathForVideoFile(clip_));
}

TEST_F(XdcamClip, DanglingSidecarIsNone) {
    card_.link("Clip/C0001M01.XML", "gone");
    EXPECT_FALSE(xdcam().metadataFilePathForVideoFile(clip_));
}

TEST(XdcamSidecar, NothingForAPathWithoutFolder) {
    EXPECT_FALSE(xdcam().metadataFilePathForVideoFile("C0001.MXF"));
    EXPECT_FALSE(xdcam().metadataFilePathForVideoFile(""));
    EXPECT_FALSE(xdcam().metadataFilePathForVideoFile("/C0001.MXF"));
}

TEST(XdcamSidecar, KeptPointInAFolderNameCutsTheKeyThere) {
    const test::CardTree card{"A.B/Clip/C1.MXF", "A.B/Clip/C0.XML", "A.B/Clip/C1M01.XML"};
    EXPECT_EQ(xdcam().metadataFilePathForVideoFile(card / "A.B/Clip/C1.MXF"),
              card / "A.B/Clip/C0.XML");
}

// ---- what the sidecar says

TEST_F(XdcamClip, AnswersFromTheSidecar) {
    writeSidecar(kSidecar);
    EXPECT_EQ(xdcam().framerateForVideoFile(clip_), QRXVideoFrameRate25);
    EXPECT_EQ(xdcam().uniqueIdentifierForVideoFile(clip_), "060A2B340101010501010D43130000001234");
    EXPECT_EQ(xdcam().startTimecodeForVideoFile(clip_), "12:46:52:13");
    EXPECT_EQ(xdcam().endTimecodeForVideoFile(clip_), "00:47:00:08");
    EXPECT_EQ(xdcam().xmlValueForFile(clip_, "<VideoFrame", "videoCodec=", "captureFps="),
              "59.94i");
    EXPECT_FALSE(xdcam().xmlValueForFile(clip_, "<VideoFrame", "nothing=", "captureFps="));
    EXPECT_FALSE(xdcam().xmlValueForFile(clip_, "<VideoFrame", "videoCodec=", "nothing="));
}

TEST_F(XdcamClip, TimecodesAreFoundWhateverTheirOrder) {
    writeSidecar(R"(<r><LtcChange frameCount="9" value="05000000" status="end"/>)"
                 R"(<LtcChange frameCount="0" value="01000000" status="increment"/></r>)");
    EXPECT_EQ(xdcam().startTimecodeForVideoFile(clip_), "00:00:00:01");
    EXPECT_EQ(xdcam().endTimecodeForVideoFile(clip_), "00:00:00:05");
}

TEST_F(XdcamClip, RateIsTheTablesWithoutAFormatRate) {
    writeSidecar(R"(<r><LtcChangeTable tcFps="30"/><VideoFrame captureFps="25p"/></r>)");
    EXPECT_EQ(xdcam().framerateForVideoFile(clip_), QRXVideoFrameRate30);
    writeSidecar(R"(<r><VideoFrame formatFps="17p"/></r>)");
    EXPECT_EQ(xdcam().framerateForVideoFile(clip_), QRXVideoFrameRateUndefined);
}

TEST_F(XdcamClip, BaseAnswersWhereTheSidecarIsMissingOrSaysNothing) {
    const std::vector<std::string> mute{
        "", "<r/>", R"(<r><LtcChange frameCount="0" value="1" status="increment"/></r>)",
        std::string(64, '\xFF'), "no XML"};
    for (const std::string& xml : mute) {
        SCOPED_TRACE(xml.substr(0, 20));
        writeSidecar(xml);
        EXPECT_EQ(xdcam().framerateForVideoFile(clip_), QRXVideoFrameRate30);
        EXPECT_EQ(xdcam().uniqueIdentifierForVideoFile(clip_), "C0001");
        EXPECT_EQ(xdcam().startTimecodeForVideoFile(clip_), "00:00:00:00");
        EXPECT_FALSE(xdcam().endTimecodeForVideoFile(clip_));
    }
}

TEST_F(XdcamClip, MetadataIsFilledOnlyWithASidecar) {
    EXPECT_FALSE(xdcam().metadataWrapperForVideoFilePath(clip_).valueForKey(
        QRXMediaMetadataVideoFileTitleKey));
    writeSidecar(kSidecar);
    const QRXMetadataWrapper metadata = xdcam().metadataWrapperForVideoFilePath(clip_);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoFileTitleKey), "C0001.MXF");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataUMIDKey),
              "060A2B340101010501010D43130000001234");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataStartTimecodeKey), "12:46:52:13");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataEndTimecodeKey), "00:47:00:08");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataCreationDateKey), "2013-05-01T10:00:00+02:00");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoCodecTitleKey),
              "MPEG2HD422_1920_1080_MP@HL");
    EXPECT_FALSE(metadata.valueForKey(QRXMediaMetadataVideoFrameRate));
}

TEST(Xdcam, ParentClaimsNothing) {
    EXPECT_TRUE(xdcam().structureChecks().empty());
    EXPECT_EQ(xdcam().rootOfUniquePathIdenifier(), "BPAV");
    EXPECT_FALSE(xdcam().pathComponentsIndicatingTheVolumeHasBegun());
}

// ---- XDCAM HD

struct PathCase {
    const char* name;
    const char* path;
    bool claimed;
};

constexpr PathCase kPaths[] = {
    {"ClipOnADisc", "/Volumes/X/Clip/C0001.MXF", true},
    {"LowerCaseExtension", "/Volumes/X/Clip/C0001.mxf", true},
    {"Deeper", "/Volumes/X/Clip/A/C0001.MXF", true},
    {"CapitalFolder", "/Volumes/X/CLIP/C0001.MXF", false},
    {"Proxy", "/Volumes/X/Sub/C0001S01.MXF", false},
    {"Sidecar", "/Volumes/X/Clip/C0001M01.XML", false},
    {"RelativePath", "Clip/C0001.MXF", false},
    {"EmptyPath", "", false},
};

class XdcamHdPath : public testing::TestWithParam<PathCase> {};

TEST_P(XdcamHdPath, IsClaimedByPathAlone) {
    EXPECT_EQ(hd().filePathMatchesVolumeStructure(GetParam().path), GetParam().claimed);
}

INSTANTIATE_TEST_SUITE_P(Table, XdcamHdPath, testing::ValuesIn(kPaths),
                         [](const auto& row) { return std::string(row.param.name); });

class XdcamHdClip : public XdcamClip {
protected:
    /// A real MXF start, with start 90000, base 30 and a UMID of AB.
    void writeMxf() const {
        using namespace test;
        card_.write("Clip/C0001.MXF",
                    asText(joined(
                        {bytes({0x06, 0x0E, 0x2B, 0x34, 0x02, 0x05, 0x01, 0x01, 0x0D, 0x01, 0x02}),
                         startItem(90000), baseItem(30), dropFrameItem(0),
                         item(0x4401, Bytes(32, std::byte{0xAB}))})));
    }
};

TEST_F(XdcamHdClip, MxfGoesBeforeTheSidecar) {
    writeSidecar(kSidecar);
    writeMxf();
    EXPECT_EQ(hd().framerateForVideoFile(clip_), QRXVideoFrameRate30);
    EXPECT_EQ(hd().startTimecodeForVideoFile(clip_), "00:50:03;13");
    EXPECT_EQ(hd().endTimecodeForVideoFile(clip_), "00:47:00:08");
    EXPECT_EQ(hd().uniqueIdentifierForVideoFile(clip_)->substr(0, 6), "ababab");
    const QRXMetadataWrapper metadata = hd().metadataWrapperForVideoFilePath(clip_);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataStartTimecodeKey), "00:50:03;13");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataCreationDateKey), "2013-05-01T10:00:00+02:00");
    EXPECT_EQ(metadata.metadataKeys().size(), 33U);
}

TEST_F(XdcamHdClip, SidecarAnswersWhereTheMxfSaysNothing) {
    writeSidecar(kSidecar);
    EXPECT_EQ(hd().startTimecodeForVideoFile(clip_), "12:46:52:13");
    EXPECT_EQ(hd().uniqueIdentifierForVideoFile(clip_), "060A2B340101010501010D43130000001234");
}

TEST_F(XdcamHdClip, KeptRateIsTheMxfsAlsoWhenItIsUndefined) {
    writeSidecar(kSidecar);
    EXPECT_EQ(hd().framerateForVideoFile(clip_), QRXVideoFrameRateUndefined);
}

TEST(XdcamHd, OrderIsByTheNumberInTheName) {
    EXPECT_EQ(hd().orderVolumeVideoFiles({"/x/C0010.MXF", "/x/C0002.MXF"}),
              (FilePaths{"/x/C0002.MXF", "/x/C0010.MXF"}));
}

TEST(XdcamHd, FolderHoldsClipsBelowAFolderClip) {
    const test::CardTree card{"Clip/A/C0001.MXF"};
    const test::CardTree flat{"Clip/C0001.MXF"};
    EXPECT_TRUE(hd().pathContainsVideoFilesMatchingVolumeStructure(card.path()));
    EXPECT_FALSE(hd().pathContainsVideoFilesMatchingVolumeStructure(flat.path()));
}

TEST(XdcamHdProxy, IsTheFirstFileOfTheProxyFolder) {
    const test::CardTree card{"Clip/A/C0001.MXF", "Sub/A/C0001S01.MXF", "Sub/A/C0002S01.MXF"};
    EXPECT_EQ(hd().proxyPathForFullResolutionFile(card / "Clip/A/C0001.MXF"),
              card / "Sub/A/C0001S01.MXF");
    EXPECT_FALSE(hd().proxyPathForFullResolutionFile(card / "Clip/A/C0001.mxf"));
    EXPECT_FALSE(hd().proxyPathForFullResolutionFile(card / "Clip/B/C0001.MXF"));
}

TEST(XdcamHdProxy, KeptOnlyTheFirstEntryIsEverLookedAt) {
    const test::CardTree card{"Clip/A/C0002.MXF", "Sub/A/C0001S01.MXF", "Sub/A/C0002S01.MXF"};
    EXPECT_FALSE(hd().proxyPathForFullResolutionFile(card / "Clip/A/C0002.MXF"));
}

TEST(XdcamHdProxy, KeptClipDirectlyInClipHasItsProxySoughtInClip) {
    const test::CardTree card{"Clip/C0001.MXF", "Sub/C0001S01.MXF"};
    EXPECT_EQ(hd().proxyPathForFullResolutionFile(card / "Clip/C0001.MXF"),
              card / "Clip/C0001.MXF");
}

TEST(XdcamHdPrecedence, CardLayoutWinsOverTheLooseMxf) {
    EXPECT_EQ(QRXHDMediaVolumeAggregate::hdAggregate()
                  .utilityForFileAtPath("/Volumes/X/Clip/C0001.MXF")
                  .volumeTitle(),
              "Sony XDCAM HD");
}

}  // namespace
}  // namespace qrx
