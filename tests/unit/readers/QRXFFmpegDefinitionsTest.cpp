#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "readers/QRXFFmpegDefinitions.h"

namespace qrx {
namespace {

using Names = std::vector<std::string>;

struct CodecCase {
    const char* name;
    std::uint64_t codec;
    const char* title;
    const char* argument;
    Names extensions;
    const char* audioArgument;
};

const CodecCase kCodecs[] = {
    {"AppleQuickTime", 0, "Apple QuickTime", "mpeg4", {"mov"}, "copy"},
    {"H264", 1, "H264", "libx264", {"mp4", "m4v", "mov"}, "copy"},
    {"MPEG4", 2, "MPEG 4", "mpeg4", {"mp4", "mov"}, "copy"},
    {"MPEG2", 3, "MPEG 2", "mpeg2video", {"mpg"}, "libmp3lame"},
    {"MPEG1", 4, "MPEG 1", "mpeg1video", {"mpg"}, "libmp3lame"},
    {"HUFFYUV", 5, "HUFFYUV", "ffvhuff", {"avi"}, "libmp3lame"},
    {"Flash", 6, "Flash", "flv", {"flv", "f4v"}, "copy"},
    {"DVVideo", 7, "DV Video", "dvvideo", {"mov"}, "copy"},
    {"MotionJPEG", 8, "Motion JPEG", "mjpeg", {"mov", "avi"}, "copy"},
    {"WindowsMedia", 9, "Windows Media", "wmv2", {"wmv"}, "wmav2"},
    {"KeptTenIsNoCodecYetHasATitle", 10, "MPEG 4", "mpeg4", {}, "copy"},
    {"AvidDNX", 11, "Avid DNX", "dnxhd", {"mov"}, "copy"},
    {"KeptTwelveIsNoCodec", 12, "MPEG 4", "mpeg4", {}, "copy"},
    {"KeptTheLargestIsNoCodec",
     std::numeric_limits<std::uint64_t>::max(),
     "MPEG 4",
     "mpeg4",
     {},
     "copy"},
};

class FFmpegCodec : public testing::TestWithParam<CodecCase> {};

TEST_P(FFmpegCodec, HasItsFacts) {
    const auto codec = static_cast<QRXFFmpegVideoCodec>(GetParam().codec);
    EXPECT_EQ(QRXFFmpegDefinitions::titleForFFmpegVideoCodec(codec), GetParam().title);
    EXPECT_EQ(QRXFFmpegDefinitions::commandLineArgumentForVideoCodec(codec), GetParam().argument);
    EXPECT_EQ(QRXFFmpegDefinitions::fileExtensionsForVideoCodec(codec), GetParam().extensions);
    EXPECT_EQ(QRXFFmpegDefinitions::audioCommandLineCodecForVideoCodec(codec),
              GetParam().audioArgument);
}

INSTANTIATE_TEST_SUITE_P(Table, FFmpegCodec, testing::ValuesIn(kCodecs),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(FFmpegDefinitions, ListTheCodecsInOrderWithoutTen) {
    std::vector<std::uint64_t> codecs;
    for (const auto codec : QRXFFmpegDefinitions::allFFmpegVideoCodecs())
        codecs.push_back(codec);
    EXPECT_EQ(codecs, (std::vector<std::uint64_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11}));
}

TEST(FFmpegDefinitions, NameThePlaceBesideTheHostsOwnFiles) {
    EXPECT_EQ(QRXFFmpegDefinitions::defaultFFmpegPath(), "/Vantrel/ffmpeg10-5/bin/ffmpeg");
}

TEST(FFmpegDefinitions, ListTheExtensionsThatAreNeverVideoInOrder) {
    EXPECT_EQ(QRXFFmpegDefinitions::invalidVideoFileExtensions(),
              (Names{"bmp", "jpg", "jpeg", "gif", "png",  "tif", "r3d", "txt",
                     "pdf", "smi", "xml",  "rtf", "cpi",  "mpl", "int", "bnp",
                     "bdm", "thm", "tiff", "aif", "aiff", "psd", "dmg"}));
}

}  // namespace
}  // namespace qrx
