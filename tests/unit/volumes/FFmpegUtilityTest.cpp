#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/ports/ProcessRunner.h"
#include "support/ReportingTool.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXHDFFmpegUtility.h"

namespace qrx {
namespace {

const std::string kDuration = "  Duration: 00:00:01.00, start: 0.000000, ";
const std::string kBitRate = "bitrate: 5000 kb/s\n";
const std::string kVideo = "    Stream #0:0: Video: h264, yuv420p, 1920x1080, 5000 kb/s, 25 fps";
const std::string kRate = ", 25 tbr, 90k tbn";

std::string report(const std::string& lines) {
    return "Input #0, mpegts, from 'x':\n" + lines;
}

struct ReportCase {
    const char* name;
    std::string report;
    bool claimed;
    QRXVideoFrameRate rate;
};

class FFmpegReport : public testing::TestWithParam<ReportCase> {};

TEST_P(FFmpegReport, DecidesWhetherTheFileIsAVideo) {
    const test::ReportingTool tool(GetParam().report);
    const test::TemporaryFolder folder;
    const FilePath file = folder.write("clip.ts");
    EXPECT_EQ(QRXHDFFmpegUtility().filePathMatchesVolumeStructure(file), GetParam().claimed);
    EXPECT_EQ(tool.runs(), 1U);
    EXPECT_EQ(QRXHDFFmpegUtility().framerateForVideoFile(file), GetParam().rate);
    EXPECT_EQ(tool.runs(), 2U);
}

INSTANTIATE_TEST_SUITE_P(
    Table, FFmpegReport,
    testing::Values(ReportCase{"Video", report(kDuration + kBitRate + kVideo + kRate), true,
                               QRXVideoFrameRate25},
                    ReportCase{"WithoutTbr", report(kDuration + kBitRate + kVideo), true,
                               QRXVideoFrameRateUndefined},
                    ReportCase{"UnknownRate",
                               report(kDuration + kBitRate + kVideo + ", 1k tbr, 90k tbn"), true,
                               QRXVideoFrameRateUndefined},
                    ReportCase{"WithoutDuration", report("  " + kBitRate + kVideo + kRate), false,
                               QRXVideoFrameRate25},
                    ReportCase{"WithoutBitRate", report(kDuration + "\n" + kVideo + kRate), false,
                               QRXVideoFrameRate25},
                    ReportCase{"WithoutVideo",
                               report(kDuration + kBitRate + "    Stream #0:0: Audio: mp3\n"),
                               false, QRXVideoFrameRateUndefined},
                    ReportCase{"NoInput", "x: Invalid data found when processing input\n", false,
                               QRXVideoFrameRateUndefined},
                    ReportCase{"Nothing", "", false, QRXVideoFrameRateUndefined}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(FFmpegUtility, TypeIsAskedOfTheClassToo) {
    EXPECT_EQ(QRXHDFFmpegUtility::volumeTypeOfClass(), 13U);
    EXPECT_EQ(QRXHDFFmpegUtility::volumeUtility()->volumeType(), 13U);
}

TEST(FFmpegUtility, MetadataIsTheReports) {
    const test::ReportingTool tool(report(kDuration + kBitRate + kVideo + kRate));
    const test::TemporaryFolder folder;
    const auto metadata =
        QRXHDFFmpegUtility().metadataWrapperForVideoFilePath(folder.write("clip.ts"));
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoCodecTitleKey), "h264");
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoDurationKey), "00:00:01.00");
}

TEST(FFmpegUtility, NothingIsClaimedWithoutTheTool) {
    platform::ScopedServices services;
    services->ffmpegPath = "/nowhere/ffmpeg";
    const test::TemporaryFolder folder;
    const FilePath file = folder.write("clip.ts");
    EXPECT_FALSE(QRXHDFFmpegUtility().filePathMatchesVolumeStructure(file));
    EXPECT_EQ(QRXHDFFmpegUtility().framerateForVideoFile(file), QRXVideoFrameRateUndefined);
}

TEST(FFmpegUtility, ToolIsNeverHandedAFifo) {
    const test::ReportingTool tool(report(kDuration + kBitRate + kVideo + kRate));
    const test::TemporaryFolder folder;
    const FilePath fifo = folder / "fifo.ts";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(QRXHDFFmpegUtility().filePathMatchesVolumeStructure(fifo));
    EXPECT_EQ(QRXHDFFmpegUtility().framerateForVideoFile(fifo), QRXVideoFrameRateUndefined);
    EXPECT_EQ(tool.runs(), 0U);
}

TEST(FFmpegUtility, CancelledRunClaimsNothing) {
    const test::ReportingTool tool(
        "", [](const platform::ProcessRequest&) { throw platform::RunCancelled{}; });
    const test::TemporaryFolder folder;
    EXPECT_FALSE(QRXHDFFmpegUtility().filePathMatchesVolumeStructure(folder.write("clip.ts")));
}

}  // namespace
}  // namespace qrx
