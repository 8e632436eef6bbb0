#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "metadata/MetadataIdentifiers.h"
#include "readers/FfmpegReport.h"

namespace qrx {
namespace {

using namespace std::string_literals;

constexpr const char* kInput = "Input #0, mov, from 'a.mov':\n";

// As the tool wrote it for a QuickTime movie of two seconds.
constexpr std::string_view kRealReport =
    R"(ffmpeg version 5.1.9-0+deb12u1 Copyright (c) 2000-2026 the FFmpeg developers
  built with gcc 12 (Debian 12.2.0-14+deb12u1)
  libavutil      57. 28.100 / 57. 28.100
Input #0, mov,mp4,m4a,3gp,3g2,mj2, from 'a.mov':
  Metadata:
    major_brand     : qt
    minor_version   : 512
    compatible_brands: qt
    encoder         : Lavf59.27.100
  Duration: 00:00:02.00, start: 0.000000, bitrate: 128 kb/s
  Stream #0:0[0x1]: Video: h264 (High) (avc1 / 0x31637661), yuv420p(progressive), 320x240 [SAR 1:1 DAR 4:3], 45 kb/s, 25 fps, 25 tbr, 12800 tbn (default)
    Metadata:
      handler_name    : VideoHandler
      vendor_id       : FFMP
      encoder         : Lavc59.37.100 libx264
  Stream #0:1[0x2]: Audio: aac (LC) (mp4a / 0x6134706D), 44100 Hz, mono, fltp, 69 kb/s (default)
    Metadata:
      handler_name    : SoundHandler
      vendor_id       : [0][0][0][0]
At least one output file must be specified
)";

/// The values of a report by identifier; a later value overwrites an earlier one, as in a wrapper.
class Report {
public:
    explicit Report(std::string_view text) : values_(valuesOfFfmpegReport(text)) {}

    [[nodiscard]] bool namesAnInput() const { return values_.has_value(); }
    [[nodiscard]] std::optional<std::string> operator[](std::string_view identifier) const {
        std::optional<std::string> found;
        for (const auto& value : values_.value()) {
            if (value.identifier == identifier) found = value.value;
        }
        return found;
    }

private:
    std::optional<std::vector<ReportedValue>> values_;
};

Report inputWith(const std::string& lines) {
    return Report(kInput + lines);
}

struct FieldCase {
    const char* name;
    const char* report;
    const char* label;
    const char* separator;
    std::optional<std::string> field;
};

const FieldCase kFields[] = {
    {"UpToTheSeparator", "Duration: 00:01:02.03, start: 0.000000, bitrate: 1234 kb/s",
     "Duration: ", ",", "00:01:02.03"},
    {"UnitStays", "Duration: 00:01:02.03, start: 0.000000, bitrate: 1234 kb/s", "bitrate: ", "/s",
     "1234 kb"},
    {"NoLabel", "start: 0.0, end", "Duration: ", ",", std::nullopt},
    {"NoSeparator", "Duration: 00:01:02.03", "Duration: ", ",", std::nullopt},
    {"SeparatorOnlyBeforeTheLabel", "a, Duration: 1", "Duration: ", ",", std::nullopt},
    {"FirstLabel", "L1,L2,", "L", ",", "1"},
    {"EveryLabelIsRemoved", "L1L2L,", "L", ",", "12"},
    {"EmptyField", "Duration: ,", "Duration: ", ",", ""},
    {"KeptSeparatorInsideTheLabel", "Duration: 1,2", "Duration: ", ":", "Duration"},
    {"KeptLabelThatIsItsOwnSeparator", "x:1:2", ":", ":", ""},
    {"EmptyLabel", "a,b", "", ",", std::nullopt},
    {"EmptySeparator", "a,b", "a", "", std::nullopt},
    {"EmptyReport", "", "a", ",", std::nullopt},
    {"CaseMatters", "duration: 1,", "Duration: ", ",", std::nullopt},
};

class ReportField : public testing::TestWithParam<FieldCase> {};

TEST_P(ReportField, IsWhatStandsBetweenLabelAndSeparator) {
    const auto& row = GetParam();
    EXPECT_EQ(reportField(row.report, row.label, row.separator), row.field);
}

INSTANTIATE_TEST_SUITE_P(Table, ReportField, testing::ValuesIn(kFields),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FfmpegReport, WithoutAnInputHasNoValues) {
    EXPECT_FALSE(Report("").namesAnInput());
    EXPECT_FALSE(Report("/x/notes.txt: Invalid data found when processing input\n").namesAnInput());
    EXPECT_FALSE(Report("Input #1, mov, from 'a.mov':").namesAnInput());
    EXPECT_FALSE(Report("Input #0").namesAnInput());
}

TEST(FfmpegReport, OfTheToolIsRead) {
    const Report report(kRealReport);
    ASSERT_TRUE(report.namesAnInput());
    EXPECT_EQ(report[QRXMediaMetadataVideoDurationKey], "00:00:02.00");
    EXPECT_EQ(report[QRXMediaMetadataVideoBitRateKey], "128 kb");
    EXPECT_EQ(report[QRXMediaMetadataVideoCodecTitleKey], "h264 (High) (avc1 / 0x31637661)");
    EXPECT_EQ(report[QRXMediaMetadataVideoFrameRate], " 25 ");
    EXPECT_EQ(report[QRXMediaMetadataAudioChannelsKey], "1");
    EXPECT_EQ(report[QRXMediaMetadataAudioCodecTitleKey], "aac (LC) (mp4a / 0x6134706D)");
    EXPECT_EQ(report[QRXMediaMetadataAudioBitRateKey], " 44100 ");
}

TEST(FfmpegReport, SetsItsValuesInOrder) {
    const auto values = valuesOfFfmpegReport(kRealReport).value();
    std::vector<std::string_view> identifiers;
    identifiers.reserve(values.size());
    for (const auto& value : values)
        identifiers.push_back(value.identifier);
    EXPECT_EQ(identifiers,
              (std::vector<std::string_view>{
                  QRXMediaMetadataVideoDurationKey, QRXMediaMetadataVideoBitRateKey,
                  QRXMediaMetadataVideoCodecTitleKey, QRXMediaMetadataCodecDimensionsDescriptionKey,
                  QRXMediaMetadataCodecDimensionsKey, QRXMediaMetadataCodecWidthKey,
                  QRXMediaMetadataCodecHeightKey, QRXMediaMetadataVideoFrameRate,
                  QRXMediaMetadataAudioChannelsKey, QRXMediaMetadataAudioCodecTitleKey,
                  QRXMediaMetadataAudioBitRateKey}));
}

TEST(FfmpegReport, OfAPlainStreamLineGivesItsDimensions) {
    const auto report = inputWith(
        "  Stream #0:0: Video: h264, yuv420p, 1920x1080 [SAR 1:1 DAR 16:9], 5000 kb/s, 25 fps, "
        "25 tbr, 90k tbn, 50 tbc\n");
    EXPECT_EQ(report[QRXMediaMetadataVideoCodecTitleKey], "h264");
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsKey], "1920x1080");
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsDescriptionKey], "1920x1080");
    EXPECT_EQ(report[QRXMediaMetadataCodecWidthKey], "1920");
    EXPECT_EQ(report[QRXMediaMetadataCodecHeightKey], "1080");
    EXPECT_EQ(report[QRXMediaMetadataVideoFrameRate], " 25 ");
    EXPECT_EQ(report[QRXMediaMetadataVideoDurationKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataVideoBitRateKey], std::nullopt);
}

TEST(FfmpegReport, WithoutABitRateAnywhereAfterTheVideoHasNoVideo) {
    const auto report = inputWith(
        "  Duration: 00:00:01.00, start: 0.0, bitrate: 20 kb/s\n"
        "  Stream #0:0: Video: h264, yuv420p, 1920x1080, 25 fps, 25 tbr\n");
    EXPECT_EQ(report[QRXMediaMetadataVideoBitRateKey], "20 kb");
    EXPECT_EQ(report[QRXMediaMetadataVideoCodecTitleKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsDescriptionKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataCodecWidthKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataCodecHeightKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataVideoFrameRate], " 25 ");
}

TEST(FfmpegReport, KeptAVideoLineWithoutABitRateRunsOnToTheAudioLine) {
    const auto report = inputWith(
        "  Stream #0:0: Video: prores\n"
        "  Stream #0:1: Audio: pcm_s16le, 48000 Hz, 2 channels, 0x10, 1536 kb/s\n");
    EXPECT_EQ(report[QRXMediaMetadataVideoCodecTitleKey],
              "prores\n  Stream #0:1: Audio: pcm_s16le");
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsKey], "0x10");
    EXPECT_EQ(report[QRXMediaMetadataAudioCodecTitleKey], "pcm_s16le");
}

TEST(FfmpegReport, KeptACodecTagIsTakenForTheDimensions) {
    const auto report =
        inputWith("  Stream #0:0: Video: h264 (avc1 / 0x31637661), yuv420p, 1920x1080, 9 kb/s\n");
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsKey], "h264 (avc1 / 0x31637661)");
    EXPECT_EQ(report[QRXMediaMetadataCodecWidthKey], "h264 (avc1 / 0");
    EXPECT_EQ(report[QRXMediaMetadataCodecHeightKey], "31637661)");
}

TEST(FfmpegReport, DimensionsOfMoreThanTwoPartsHaveNoWidth) {
    const auto report = inputWith("Video: h264, 4x3x2, 9 kb/s");
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsKey], "4x3x2");
    EXPECT_EQ(report[QRXMediaMetadataCodecWidthKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataCodecHeightKey], std::nullopt);
}

TEST(FfmpegReport, DimensionsEndBeforeABracketEvenWhenTheTimesSignComesLater) {
    const auto report = inputWith("Video: h264, \n size [0x0] , 9 kb/s");
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsKey], "size");
    EXPECT_EQ(report[QRXMediaMetadataCodecWidthKey], std::nullopt);
}

TEST(FfmpegReport, DimensionsMayBeEmpty) {
    const auto report = inputWith("Video: h264, [0x0], 9 kb/s");
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsKey], "");
    EXPECT_EQ(report[QRXMediaMetadataCodecWidthKey], std::nullopt);
}

TEST(FfmpegReport, WithoutATimesSignHasNoDimensions) {
    const auto report = inputWith("Video: h264, yuv420p, 9 kb/s");
    EXPECT_EQ(report[QRXMediaMetadataVideoCodecTitleKey], "h264");
    EXPECT_EQ(report[QRXMediaMetadataCodecDimensionsKey], std::nullopt);
}

TEST(FfmpegReport, TheLastFrameRateStands) {
    const auto report = inputWith("Video: a, 25 tbr, 30 tbr, x, 29.97 tbr (default), 9 kb/s");
    EXPECT_EQ(report[QRXMediaMetadataVideoFrameRate], " 29.97 ");
}

TEST(FfmpegReport, AFrameRateMayStandOutsideTheVideoLine) {
    EXPECT_EQ(inputWith("one, 1k tbr")[QRXMediaMetadataVideoFrameRate], " 1k ");
    EXPECT_EQ(inputWith("tbr tbr")[QRXMediaMetadataVideoFrameRate], " from 'a.mov':\n")
        << "the piece begins at the comma after the input's format";
    EXPECT_EQ(Report("Input #0,tbr tbr")[QRXMediaMetadataVideoFrameRate], "");
}

TEST(FfmpegReport, WithoutAFrameRateHasNone) {
    EXPECT_EQ(inputWith("Video: a, 9 kb/s")[QRXMediaMetadataVideoFrameRate], std::nullopt);
}

TEST(FfmpegReport, CountsItsAudioStreams) {
    EXPECT_EQ(inputWith("no streams")[QRXMediaMetadataAudioChannelsKey], "0");
    EXPECT_EQ(inputWith("Stream #0:0: Video: a, 1 kb/s")[QRXMediaMetadataAudioChannelsKey], "0");
    EXPECT_EQ(
        inputWith("Stream #0:0: Audio: a\nStream #0:1: Audio: b")[QRXMediaMetadataAudioChannelsKey],
        "2");
    EXPECT_EQ(inputWith("Stream #0:0: Audio: a Audio: b")[QRXMediaMetadataAudioChannelsKey], "1");
}

TEST(FfmpegReport, KeptTheSampleRateStandsUnderTheBitRate) {
    const auto report = inputWith("Stream #0:0: Audio: mp3, 44100 Hz, 48000 Hz, 128 kb/s");
    EXPECT_EQ(report[QRXMediaMetadataAudioCodecTitleKey], "mp3");
    EXPECT_EQ(report[QRXMediaMetadataAudioBitRateKey], " 48000 ") << "the last one stands";
}

TEST(FfmpegReport, WithoutABitRateAfterTheAudioHasNoAudioCodec) {
    const auto report = inputWith("Stream #0:0: Audio: mp3, 44100 Hz\n");
    EXPECT_EQ(report[QRXMediaMetadataAudioCodecTitleKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataAudioBitRateKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataAudioChannelsKey], "1");
}

TEST(FfmpegReport, OfSeveralInputsTheLastCounts) {
    const Report report(
        "Input #0, a\n Duration: 1, bitrate: 1 kb/s\nInput #0, b\n Duration: 2, bitrate: 3 kb/s");
    EXPECT_EQ(report[QRXMediaMetadataVideoDurationKey], "2");
    EXPECT_EQ(report[QRXMediaMetadataVideoBitRateKey], "3 kb");
}

TEST(FfmpegReport, OfAStillPictureHasNoBitRate) {
    const Report report(
        "Input #0, image2, from 'a.jpg':\n  Duration: 00:00:00.04, start: 0.000000, bitrate: N/A\n"
        "  Stream #0:0: Video: mjpeg (Baseline), yuvj420p(pc), 64x48, 25 fps, 25 tbr, 25 tbn\n");
    EXPECT_EQ(report[QRXMediaMetadataVideoDurationKey], "00:00:00.04");
    EXPECT_EQ(report[QRXMediaMetadataVideoBitRateKey], std::nullopt);
    EXPECT_EQ(report[QRXMediaMetadataVideoCodecTitleKey], std::nullopt);
}

TEST(FfmpegReport, CutAnywhereIsReadWithoutAFault) {
    for (std::size_t cut = 0; cut <= kRealReport.size(); ++cut) {
        SCOPED_TRACE(cut);
        const Report report(kRealReport.substr(0, cut));
        const bool inputIsWhole = cut >= kRealReport.find("Input #0,") + 9;
        ASSERT_EQ(report.namesAnInput(), inputIsWhole);
        if (!inputIsWhole) continue;
        const auto duration = report[QRXMediaMetadataVideoDurationKey];
        EXPECT_TRUE(!duration || *duration == "00:00:02.00");
        EXPECT_TRUE(report[QRXMediaMetadataAudioChannelsKey].has_value());
    }
}

TEST(FfmpegReport, OfSeparatorsAloneIsReadQuickly) {
    constexpr std::size_t kSize = std::size_t{16} << 20U;
    const auto commas = inputWith("Video: a/s Audio: b/s" + std::string(kSize, ','));
    EXPECT_EQ(commas[QRXMediaMetadataVideoCodecTitleKey], "a");
    std::string streams;
    while (streams.size() < kSize)
        streams += "Stream #Audio:";
    EXPECT_EQ(inputWith(streams)[QRXMediaMetadataAudioChannelsKey],
              std::to_string(streams.size() / 14));
}

TEST(FfmpegReport, MayHoldANulByte) {
    const auto report = inputWith("title : a\0b\n Duration: 00:01, bitrate: 1 kb/s"s);
    EXPECT_EQ(report[QRXMediaMetadataVideoDurationKey], "00:01");
}

struct BytesCase {
    const char* name;
    std::string bytes;
    std::string text;
};

const BytesCase kBytes[] = {
    {"Empty", "", ""},
    {"Ascii", "Input #0,", "Input #0,"},
    {"Utf8", "caf\xC3\xA9 \xF0\x9F\x98\x80", "caf\xC3\xA9 \xF0\x9F\x98\x80"},
    {"Latin1IsReadAsSuch", "caf\xE9, 25 tbr", "caf\xC3\xA9, 25 tbr"},
    {"MixedKeepsWhatIsUtf8", "\xC3\xA9\xE9", "\xC3\xA9\xC3\xA9"},
    {"CutSequence", "a\xF0\x9F", "a\xC3\xB0\xC2\x9F"},
    {"NulStays", std::string("a\0b", 3), std::string("a\0b", 3)},
};

class ToolOutput : public testing::TestWithParam<BytesCase> {};

TEST_P(ToolOutput, BecomesText) {
    EXPECT_EQ(textOfToolOutput(GetParam().bytes), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, ToolOutput, testing::ValuesIn(kBytes),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx
