#include <cstdint>
#include <initializer_list>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/PictureScaling.h"

namespace qrx::platform {
namespace {

using Samples = std::vector<int>;

Image picture(std::uint32_t width, std::uint32_t height, const Samples& samples,
              AlphaKind alpha = AlphaKind::straight) {
    Image image{width, height, {}, alpha};
    for (const int sample : samples) {
        image.rgba.push_back(static_cast<std::byte>(sample));
    }
    return image;
}

Samples samplesOf(const Image& image) {
    Samples samples;
    for (const std::byte sample : image.rgba) {
        samples.push_back(std::to_integer<int>(sample));
    }
    return samples;
}

TEST(PictureScaling, ShrinkingTakesTheMeanOfWhatAPixelCovers) {
    const Image image = picture(2, 2,
                                {0, 0, 0, 255, 100, 20, 8, 255,  //
                                 0, 0, 0, 255, 100, 20, 8, 255});
    EXPECT_EQ(samplesOf(scaledPicture(image, 1, 1)), (Samples{50, 10, 4, 255}));
    EXPECT_EQ(samplesOf(scaledPicture(image, 2, 1)), (Samples{0, 0, 0, 255, 100, 20, 8, 255}));
}

TEST(PictureScaling, PixelThatLiesAcrossTwoIsSharedBetweenThem) {
    const Image image = picture(3, 1, {0, 0, 0, 255, 90, 90, 90, 255, 240, 240, 240, 255});
    EXPECT_EQ(samplesOf(scaledPicture(image, 2, 1)),
              (Samples{30, 30, 30, 255, 190, 190, 190, 255}));
}

TEST(PictureScaling, GrowingGoesInALineFromCentreToCentre) {
    const Image image = picture(2, 1, {0, 0, 0, 255, 100, 100, 100, 255});
    EXPECT_EQ(samplesOf(scaledPicture(image, 4, 1)),
              (Samples{0, 0, 0, 255, 25, 25, 25, 255, 75, 75, 75, 255, 100, 100, 100, 255}));
}

TEST(PictureScaling, SameSizeChangesNothing) {
    const Image image = picture(2, 2, {1, 2, 3, 255, 5, 6, 7, 255, 9, 10, 11, 255, 13, 14, 15, 255},
                                AlphaKind::none);
    const Image same = scaledPicture(image, 2, 2);
    EXPECT_EQ(samplesOf(same), samplesOf(image));
    EXPECT_EQ(same.alpha, AlphaKind::none);
}

TEST(PictureScaling, WhatIsClearTintsNothing) {
    const Image straight = picture(2, 1, {200, 100, 50, 255, 0, 255, 0, 0});
    EXPECT_EQ(samplesOf(scaledPicture(straight, 1, 1)), (Samples{200, 100, 50, 128}));
    const Image multiplied =
        picture(2, 1, {200, 100, 50, 255, 0, 0, 0, 0}, AlphaKind::premultipliedFirst);
    EXPECT_EQ(samplesOf(scaledPicture(multiplied, 1, 1)), (Samples{100, 50, 25, 128}));
}

TEST(PictureScaling, PlainPictureStaysPlainAtEverySize) {
    constexpr std::uint32_t kSide = 7;
    Image image = picture(kSide, kSide, {});
    image.rgba.assign(std::size_t{kSide} * kSide * 4, std::byte{77});
    image.alpha = AlphaKind::none;
    for (std::uint32_t width = 1; width < 20; ++width) {
        for (std::uint32_t height = 1; height < 20; ++height) {
            const Image scaled = scaledPicture(image, width, height);
            ASSERT_TRUE(isSound(scaled));
            ASSERT_EQ(samplesOf(scaled), Samples(std::size_t{width} * height * 4, 77))
                << width << " x " << height;
        }
    }
}

struct Fit {
    const char* name;
    std::uint32_t width, height, mostWide, mostHigh, fittedWidth, fittedHeight;
};

class Fitting : public testing::TestWithParam<Fit> {};

INSTANTIATE_TEST_SUITE_P(Table, Fitting,
                         testing::Values(Fit{"Wide", 192, 108, 25, 25, 25, 14},
                                         Fit{"Tall", 108, 192, 25, 25, 14, 25},
                                         Fit{"FitsAlready", 20, 10, 25, 25, 20, 10},
                                         Fit{"FitsExactly", 25, 25, 25, 25, 25, 25},
                                         Fit{"LongAndThin", 1000, 1, 25, 25, 25, 1},
                                         Fit{"HeightDecides", 40, 40, 39, 10, 10, 10}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(Fitting, KeepsTheProportions) {
    const Fit& row = GetParam();
    Image image{row.width, row.height, {}};
    image.rgba.resize(std::size_t{row.width} * row.height * 4);
    const Image fitted = fittedInto(image, row.mostWide, row.mostHigh);
    EXPECT_EQ(fitted.width, row.fittedWidth);
    EXPECT_EQ(fitted.height, row.fittedHeight);
    EXPECT_TRUE(isSound(fitted));
}

TEST(Straightened, ColoursAreNoLongerMultiplied) {
    const Image image =
        picture(3, 1, {50, 100, 128, 128, 0, 0, 0, 0, 7, 8, 9, 255}, AlphaKind::premultipliedFirst);
    const Image straight = straightened(image);
    EXPECT_EQ(straight.alpha, AlphaKind::straight);
    EXPECT_EQ(samplesOf(straight), (Samples{100, 199, 255, 128, 0, 0, 0, 0, 7, 8, 9, 255}));
}

TEST(Straightened, ByteWithoutMeaningBecomesFull) {
    const Image straight = straightened(picture(1, 1, {1, 2, 3, 4}, AlphaKind::noneSkipFirst));
    EXPECT_EQ(straight.alpha, AlphaKind::none);
    EXPECT_EQ(samplesOf(straight), (Samples{1, 2, 3, 255}));
}

TEST(IsSound, BytesMustBeThoseOfThePixels) {
    EXPECT_TRUE(isSound(picture(1, 1, {1, 2, 3, 4})));
    EXPECT_FALSE(isSound(picture(1, 1, {1, 2, 3})));
    EXPECT_FALSE(isSound(picture(2, 1, {1, 2, 3, 4})));
    EXPECT_FALSE(isSound(picture(0, 7, {})));
    EXPECT_FALSE(isSound(Image{0xFFFFFFFF, 0xFFFFFFFF, {}}));
}

}  // namespace
}  // namespace qrx::platform
