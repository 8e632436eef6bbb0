#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <zlib.h>

#include "platform/linux/PixbufImageCodec.h"
#include "support/FfmpegMedia.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

std::string bigEndian(std::uint32_t value) {
    std::string text;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        text += static_cast<char>((value >> shift) & 0xFFU);
    }
    return text;
}

std::string pngChunk(const std::string& type, const std::string& data) {
    const std::string checked = type + data;
    const auto sum = ::crc32(0, reinterpret_cast<const Bytef*>(checked.data()),
                             static_cast<uInt>(checked.size()));
    return bigEndian(static_cast<std::uint32_t>(data.size())) + checked +
           bigEndian(static_cast<std::uint32_t>(sum));
}

enum class PngColour : char { rgb = 2, rgba = 6 };

/// @param rows  every row with its filter byte (0) in front, not packed yet.
std::string png(std::uint32_t width, std::uint32_t height, PngColour colour,
                std::string_view rows) {
    std::string header = bigEndian(width) + bigEndian(height);
    header += '\x08';  // bits a sample
    header += static_cast<char>(colour);
    header.append(3, '\0');  // packing, filters, not interlaced
    uLongf size = ::compressBound(static_cast<uLong>(rows.size()));
    std::string packed(size, '\0');
    ::compress(reinterpret_cast<Bytef*>(packed.data()), &size,
               reinterpret_cast<const Bytef*>(rows.data()), static_cast<uLong>(rows.size()));
    packed.resize(size);
    return "\x89PNG\r\n\x1A\n" + pngChunk("IHDR", header) + pngChunk("IDAT", packed) +
           pngChunk("IEND", {});
}

std::vector<int> samples(const Image& image) {
    std::vector<int> values;
    for (const std::byte sample : image.rgba) {
        values.push_back(std::to_integer<int>(sample));
    }
    return values;
}

class PixbufImageCodecTest : public testing::Test {
protected:
    test::TemporaryFolder folder_;
    PixbufImageCodec codec_;
};

TEST_F(PixbufImageCodecTest, PixelsComeInRowsFromTheTop) {
    // Two by two, width not a multiple of four bytes: red green / blue white.
    const std::string rows("\0\xFF\0\0\0\xFF\0\0\0\0\xFF\xFF\xFF\xFF"sv);
    const auto image = codec_.load(folder_.write("a.png", png(2, 2, PngColour::rgb, rows)));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 2U);
    EXPECT_EQ(image->height, 2U);
    EXPECT_EQ(samples(*image), (std::vector<int>{255, 0, 0, 255, 0, 255, 0, 255,  //
                                                 0, 0, 255, 255, 255, 255, 255, 255}));
}

TEST_F(PixbufImageCodecTest, TransparencyIsKept) {
    const std::string rows("\0\x0A\x14\x1E\x28"sv);
    const auto image = codec_.load(folder_.write("a.png", png(1, 1, PngColour::rgba, rows)));
    ASSERT_TRUE(image);
    EXPECT_EQ(samples(*image), (std::vector<int>{10, 20, 30, 40}));
}

TEST_F(PixbufImageCodecTest, NameDoesNotMatter) {
    const std::string picture = png(1, 1, PngColour::rgb, "\0\1\2\3"sv);
    EXPECT_TRUE(codec_.load(folder_.write("clip.mov", picture)));
    EXPECT_TRUE(codec_.load(folder_.write("ü \xFF", picture)));
    EXPECT_TRUE(codec_.load(folder_.link("link", "clip.mov")));
}

TEST_F(PixbufImageCodecTest, WhatIsNoPictureGivesNothing) {
    EXPECT_FALSE(codec_.load(folder_ / "missing"));
    EXPECT_FALSE(codec_.load(folder_.path()));
    EXPECT_FALSE(codec_.load(""));
    EXPECT_FALSE(codec_.load(std::string("a\0b", 3)));
    EXPECT_FALSE(codec_.load(folder_.write("empty.png")));
    EXPECT_FALSE(codec_.load(folder_.write("text.png", "just text\n")));
    EXPECT_FALSE(codec_.load("/dev/zero"));
    EXPECT_FALSE(codec_.load(folder_.link("dangling", "nowhere")));
}

TEST_F(PixbufImageCodecTest, FifoDoesNotBlock) {
    const std::string fifo = folder_ / "a.png";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(codec_.load(fifo));
}

TEST_F(PixbufImageCodecTest, TooManyPixelsAreRefusedBeforeMemoryIsTaken) {
    rusage before{};
    rusage after{};
    ::getrusage(RUSAGE_SELF, &before);
    const std::string row(1 + 3 * 20, '\0');
    for (const auto& [width, height] : {std::pair{10'001U, 10'000U}, std::pair{40'000U, 40'000U},
                                        std::pair{0x7FFFFFFFU, 0x7FFFFFFFU}}) {
        SCOPED_TRACE(width);
        EXPECT_FALSE(
            codec_.load(folder_.write("huge.png", png(width, height, PngColour::rgb, row))));
    }
    // A picture that claims as much in another format.
    const std::string bitmap =
        "BM\0\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x40\x9C\0\0\x40\x9C\0\0\1\0\x18\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s +
        std::string(1000, '\0');
    EXPECT_FALSE(codec_.load(folder_.write("huge.bmp", bitmap)));
    ::getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 100'000) << "kibibytes";
}

/// Real files of the formats that cards and ffmpeg hold.
class PixbufFormats : public testing::TestWithParam<const char*> {
protected:
    static std::string picture() {
        const std::string extension = GetParam();
        return test::FfmpegMedia::shared().file(
            "picture." + extension, {"-f", "lavfi", "-i", "testsrc=s=33x21", "-frames:v", "1"});
    }
};

INSTANTIATE_TEST_SUITE_P(Table, PixbufFormats, testing::Values("jpg", "png", "bmp", "gif", "tiff"),
                         [](const auto& row) { return std::string(row.param); });

TEST_P(PixbufFormats, IsRead) {
    const auto image = PixbufImageCodec().load(picture());
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 33U);
    EXPECT_EQ(image->height, 21U);
    EXPECT_EQ(image->rgba.size(), std::size_t{4} * 33 * 21);
}

TEST_P(PixbufFormats, TruncationGivesNothing) {
    const std::string whole = test::fileContents(picture());
    const test::TemporaryFolder folder;
    const PixbufImageCodec codec;
    // TIFF may end in a directory of which the decoder does not need the last bytes.
    const std::size_t spare = GetParam() == "tiff"sv ? 16 : 0;
    for (std::size_t cut = 0; cut + spare < whole.size(); ++cut) {
        const std::string path = folder.write("cut", std::string_view(whole).substr(0, cut));
        ASSERT_FALSE(codec.load(path)) << cut << " of " << whole.size();
    }
}

TEST_P(PixbufFormats, DamagedBytesAreSafe) {
    const std::string whole = test::fileContents(picture());
    const test::TemporaryFolder folder;
    const PixbufImageCodec codec;
    for (std::size_t at = 0; at < whole.size(); at += 7) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(~damaged[at]);
        if (const auto image = codec.load(folder.write("damaged", damaged))) {
            ASSERT_EQ(image->rgba.size(), std::size_t{4} * image->width * image->height) << at;
        }
    }
}

}  // namespace
}  // namespace qrx::platform
