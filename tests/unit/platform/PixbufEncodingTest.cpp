#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/PixbufImageCodec.h"

namespace qrx::platform {
namespace {

using Bytes = std::vector<std::byte>;

/// A picture in which every pixel differs from its neighbours.
Image gradient(std::uint32_t width, std::uint32_t height, AlphaKind alpha) {
    Image image{width, height, {}, alpha};
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            image.rgba.push_back(static_cast<std::byte>(x * 255 / width));
            image.rgba.push_back(static_cast<std::byte>(y * 255 / height));
            image.rgba.push_back(static_cast<std::byte>(x ^ y));
            image.rgba.push_back(alpha == AlphaKind::straight ? static_cast<std::byte>(255 - x)
                                                              : std::byte{0xFF});
        }
    }
    return image;
}

std::uint64_t number(std::span<const std::byte> bytes, std::size_t at, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = count; i-- > 0;) {
        value = value << 8U | std::to_integer<std::uint64_t>(bytes[at + i]);
    }
    return value;
}

/// Where the value of a directory entry stands in a little-endian TIFF; 0 without that tag.
std::size_t tiffEntry(std::span<const std::byte> file, std::uint16_t tag) {
    const std::size_t directory = number(file, 4, 4);
    const std::size_t entries = number(file, directory, 2);
    for (std::size_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + i * 12;
        if (number(file, entry, 2) == tag) return entry + 8;
    }
    return 0;
}

double tiffRational(std::span<const std::byte> file, std::uint16_t tag) {
    const std::size_t at = number(file, tiffEntry(file, tag), 4);
    return static_cast<double>(number(file, at, 4)) / static_cast<double>(number(file, at + 4, 4));
}

constexpr std::uint16_t kTiffWidth = 256;
constexpr std::uint16_t kTiffXResolution = 282;
constexpr std::uint16_t kTiffYResolution = 283;
constexpr std::uint16_t kTiffResolutionUnit = 296;

class PixbufEncoding : public testing::TestWithParam<ImageFormat> {
protected:
    PixbufImageCodec codec_;
};

INSTANTIATE_TEST_SUITE_P(Table, PixbufEncoding,
                         testing::Values(ImageFormat::tiff, ImageFormat::png, ImageFormat::jpeg),
                         [](const auto& row) {
                             return row.param == ImageFormat::tiff  ? "Tiff"
                                    : row.param == ImageFormat::png ? "Png"
                                                                    : "Jpeg";
                         });

TEST_P(PixbufEncoding, IsReadBack) {
    const Image image = gradient(33, 21, AlphaKind::none);
    const auto file = codec_.encoded(image, {.format = GetParam(), .jpegQuality = 100});
    ASSERT_TRUE(file);
    const auto read = codec_.decoded(*file);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->width, 33U);
    EXPECT_EQ(read->height, 21U);
    EXPECT_EQ(read->alpha, AlphaKind::none);
    if (GetParam() != ImageFormat::jpeg) {
        EXPECT_EQ(read->rgba, image.rgba);
        return;
    }
    ASSERT_EQ(read->rgba.size(), image.rgba.size());
    std::int64_t difference = 0;
    for (std::size_t i = 0; i < image.rgba.size(); ++i) {
        difference +=
            std::abs(std::to_integer<int>(read->rgba[i]) - std::to_integer<int>(image.rgba[i]));
    }
    EXPECT_LT(difference / static_cast<std::int64_t>(image.rgba.size()), 8);
}

TEST_P(PixbufEncoding, CutShortIsNoPicture) {
    const auto file = codec_.encoded(gradient(9, 5, AlphaKind::none), {.format = GetParam()});
    ASSERT_TRUE(file);
    for (std::size_t cut = 0; cut < file->size(); ++cut) {
        ASSERT_FALSE(codec_.decoded(std::span(*file).first(cut))) << cut << " of " << file->size();
    }
}

TEST_P(PixbufEncoding, WhatIsNoPictureIsNotWritten) {
    EXPECT_FALSE(codec_.encoded({}, {.format = GetParam()}));
    EXPECT_FALSE(codec_.encoded({0, 5, {}}, {.format = GetParam()}));
    EXPECT_FALSE(codec_.encoded({2, 2, Bytes(15)}, {.format = GetParam()}));
    EXPECT_FALSE(codec_.encoded({2, 2, Bytes(17)}, {.format = GetParam()}));
    EXPECT_FALSE(codec_.encoded({100'001, 1000, {}}, {.format = GetParam()}));
}

TEST(PixbufImageCodecPng, KeepsTheOpacity) {
    const PixbufImageCodec codec;
    const Image image = gradient(33, 21, AlphaKind::straight);
    const auto file = codec.encoded(image, {.format = ImageFormat::png});
    ASSERT_TRUE(file);
    const auto read = codec.decoded(*file);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->alpha, AlphaKind::straight);
    EXPECT_EQ(read->rgba, image.rgba);
}

TEST(PixbufImageCodecTiff, OpacityComesBackWithTheColoursMultiplied) {
    const PixbufImageCodec codec;
    const Image image{3,
                      1,
                      {std::byte{200}, std::byte{100}, std::byte{50}, std::byte{128},  //
                       std::byte{9}, std::byte{9}, std::byte{9}, std::byte{0},         //
                       std::byte{1}, std::byte{2}, std::byte{3}, std::byte{255}}};
    const auto file = codec.encoded(image, {.format = ImageFormat::tiff});
    ASSERT_TRUE(file);
    const auto read = codec.decoded(*file);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->alpha, AlphaKind::premultipliedFirst);
    const Bytes expected{std::byte{100}, std::byte{50}, std::byte{25}, std::byte{128},  //
                         std::byte{0},   std::byte{0},  std::byte{0},  std::byte{0},    //
                         std::byte{1},   std::byte{2},  std::byte{3},  std::byte{255}};
    EXPECT_EQ(read->rgba, expected);
    const auto again = codec.encoded(*read, {.format = ImageFormat::tiff});
    ASSERT_TRUE(again);
    EXPECT_EQ(codec.decoded(*again)->rgba, expected);
}

TEST(PixbufImageCodecJpeg, WhatIsClearStandsOnWhite) {
    const PixbufImageCodec codec;
    const auto file =
        codec.encoded({8, 8, Bytes(8 * 8 * 4)}, {.format = ImageFormat::jpeg, .jpegQuality = 100});
    ASSERT_TRUE(file);
    const auto read = codec.decoded(*file);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->rgba, Bytes(8 * 8 * 4, std::byte{0xFF}));
}

TEST(PixbufImageCodecJpeg, QualityIsHeldWithinItsBounds) {
    const PixbufImageCodec codec;
    const Image image = gradient(64, 64, AlphaKind::none);
    const auto sizeAt = [&](int quality) {
        const auto file =
            codec.encoded(image, {.format = ImageFormat::jpeg, .jpegQuality = quality});
        return file ? file->size() : 0;
    };
    EXPECT_LT(sizeAt(10), sizeAt(100));
    EXPECT_EQ(sizeAt(-5), sizeAt(0));
    EXPECT_EQ(sizeAt(1000), sizeAt(100));
}

TEST(PixbufImageCodecTiff, SaysExactlyHowLargeItIsOnPaper) {
    const auto file = PixbufImageCodec().encoded(
        gradient(250, 141, AlphaKind::none),
        {.format = ImageFormat::tiff, .pointsWide = 250, .pointsHigh = 250});
    ASSERT_TRUE(file);
    EXPECT_EQ(number(*file, tiffEntry(*file, kTiffWidth), 4), 250U);
    EXPECT_EQ(number(*file, tiffEntry(*file, kTiffResolutionUnit), 2), 2U) << "inches";
    EXPECT_DOUBLE_EQ(250 / tiffRational(*file, kTiffXResolution) * 72, 250);
    EXPECT_DOUBLE_EQ(141 / tiffRational(*file, kTiffYResolution) * 72, 250);
}

TEST(PixbufImageCodecTiff, SaysNothingOfItsSizeUnasked) {
    const auto file = PixbufImageCodec().encoded(gradient(4, 4, AlphaKind::straight),
                                                 {.format = ImageFormat::tiff});
    ASSERT_TRUE(file);
    EXPECT_EQ(tiffEntry(*file, kTiffXResolution), 0U);
    EXPECT_EQ(tiffEntry(*file, kTiffResolutionUnit), 0U);
}

TEST(PixbufImageCodecPng, SaysItsSizeInWholeDots) {
    const auto file = PixbufImageCodec().encoded(
        gradient(250, 141, AlphaKind::none),
        {.format = ImageFormat::png, .pointsWide = 250, .pointsHigh = 250});
    ASSERT_TRUE(file);
    const std::string_view text(reinterpret_cast<const char*>(file->data()), file->size());
    const std::size_t at = text.find("pHYs");
    ASSERT_NE(at, std::string_view::npos);
    // 72 and 41 dots per inch in dots per metre, big-endian.
    EXPECT_EQ(std::to_integer<int>((*file)[at + 6]) * 256 + std::to_integer<int>((*file)[at + 7]),
              2835);
    EXPECT_EQ(std::to_integer<int>((*file)[at + 10]) * 256 + std::to_integer<int>((*file)[at + 11]),
              1614);
}

TEST(PixbufImageCodecScaling, FillsTheRectangleWhateverItsProportions) {
    const PixbufImageCodec codec;
    const auto scaled = codec.scaled(gradient(40, 20, AlphaKind::none), 3, 30);
    ASSERT_TRUE(scaled);
    EXPECT_EQ(scaled->width, 3U);
    EXPECT_EQ(scaled->height, 30U);
    EXPECT_EQ(scaled->rgba.size(), 3U * 30 * 4);
}

TEST(PixbufImageCodecScaling, RefusesWhatIsEmptyOrTooLarge) {
    const PixbufImageCodec codec;
    const Image image = gradient(4, 4, AlphaKind::none);
    EXPECT_FALSE(codec.scaled(image, 0, 4));
    EXPECT_FALSE(codec.scaled(image, 4, 0));
    EXPECT_FALSE(codec.scaled(image, 100'001, 1000));
    EXPECT_FALSE(codec.scaled(image, 0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_FALSE(codec.scaled({}, 4, 4));
    EXPECT_FALSE(codec.scaled({2, 2, Bytes(15)}, 4, 4));
}

}  // namespace
}  // namespace qrx::platform
