#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

#include "platform/fake/FakeImageCodec.h"
#include "platform/fake/FakeThumbnailer.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "readers/QRXQuickTimeImageUtility.h"

namespace qrx {
namespace {

using platform::AlphaKind;
using platform::Image;
using Samples = std::vector<int>;

const QRXQuickTimeImageUtility utility = QRXQuickTimeImageUtility::qtImageUtility();

Image picture(std::uint32_t width, std::uint32_t height, const Samples& samples, AlphaKind alpha) {
    Image image{width, height, {}, alpha};
    for (const int sample : samples) {
        image.rgba.push_back(static_cast<std::byte>(sample));
    }
    return image;
}

Image plain(std::uint32_t width, std::uint32_t height) {
    return picture(width, height, Samples(std::size_t{width} * height * 4, 9), AlphaKind::none);
}

Samples samplesOf(const std::optional<Image>& image) {
    Samples samples;
    if (!image) return samples;
    for (const std::byte sample : image->rgba) {
        samples.push_back(std::to_integer<int>(sample));
    }
    return samples;
}

class QuickTimePoster : public testing::Test {
protected:
    QuickTimePoster() {
        services_->thumbnailer = thumbnailer_;
        services_->imageCodec = codec_;
        services_->systemLog = log_;
    }

    platform::ScopedServices services_;
    std::shared_ptr<platform::FakeThumbnailer> thumbnailer_ =
        std::make_shared<platform::FakeThumbnailer>();
    std::shared_ptr<platform::FakeImageCodec> codec_ = std::make_shared<platform::FakeImageCodec>();
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
};

TEST_F(QuickTimePoster, DataIsATiffThatMeasures250PointsEachWay) {
    thumbnailer_->pictures["/clip.mov"] = plain(250, 141);
    const auto data = utility.posterImageDataForFilePath("/clip.mov", 250, 250);
    ASSERT_EQ(codec_->encodings.size(), 1U);
    EXPECT_EQ(codec_->encodings[0].format, platform::ImageFormat::tiff);
    EXPECT_EQ(codec_->encodings[0].pointsWide, 250);
    EXPECT_EQ(codec_->encodings[0].pointsHigh, 250);
    const auto read = codec_->decoded(data);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->width, 250U);
    EXPECT_EQ(read->height, 141U) << "the proportions are the clip's";
}

TEST_F(QuickTimePoster, SidesArePassedOnAndUnknownOnesAre250) {
    constexpr auto kUnknown = QRXQuickTimeImageUtility::kNotFound;
    static_assert(kUnknown == 9223372036854775807ULL);
    static_cast<void>(utility.posterImageDataForFilePath("/a", 640, 480));
    static_cast<void>(utility.posterImageDataForFilePath("/a", kUnknown, 480));
    static_cast<void>(utility.posterImageDataForFilePath("/a", 640, kUnknown));
    static_cast<void>(utility.posterImageDataForFilePath("/a", kUnknown, kUnknown));
    static_cast<void>(utility.posterImageDataForFilePath("/a", 0, UINT64_MAX));
    const std::vector<platform::FakeThumbnailer::Request> expected{{"/a", 640, 480},
                                                                   {"/a", 250, 480},
                                                                   {"/a", 640, 250},
                                                                   {"/a", 250, 250},
                                                                   {"/a", 0, UINT32_MAX}};
    EXPECT_EQ(thumbnailer_->requests, expected);
}

TEST_F(QuickTimePoster, DataIsEmptyWithoutAThumbnail) {
    EXPECT_TRUE(utility.posterImageDataForFilePath("/clip.mov", 250, 250).empty());
    EXPECT_FALSE(utility.posterImageForFilePath("/clip.mov"));
}

TEST_F(QuickTimePoster, DataIsEmptyWhereTheThumbnailIsNoPicture) {
    thumbnailer_->pictures["/empty"] = Image{};
    thumbnailer_->pictures["/short"] = Image{2, 2, std::vector<std::byte>(3)};
    for (const char* const path : {"/empty", "/short"}) {
        EXPECT_TRUE(utility.posterImageDataForFilePath(path, 250, 250).empty()) << path;
        EXPECT_FALSE(utility.posterImageForFilePath(path)) << path;
    }
}

TEST_F(QuickTimePoster, KeptChoicesOfAPosterChangeNothing) {
    thumbnailer_->pictures["/clip.mov"] = plain(3, 2);
    for (const auto& image : {utility.posterImageForFilePath("/clip.mov"),
                              utility.posterImageForFilePath("/clip.mov", false),
                              utility.posterImageForFilePath("/clip.mov", true),
                              utility.posterImageForFilePath("/clip.mov", true, false),
                              utility.posterImageForFilePath("/clip.mov", false, true)}) {
        ASSERT_TRUE(image);
        EXPECT_EQ(image->width, 3U);
        EXPECT_EQ(image->height, 2U);
    }
    ASSERT_EQ(thumbnailer_->requests.size(), 5U);
    for (const auto& request : thumbnailer_->requests) {
        EXPECT_EQ(request, (platform::FakeThumbnailer::Request{"/clip.mov", 250, 250}));
    }
}

TEST_F(QuickTimePoster, FaultOfTheThumbnailerIsNoPoster) {
    thumbnailer_->before = [] { throw std::runtime_error("broken"); };
    EXPECT_TRUE(utility.posterImageDataForFilePath("/clip.mov", 250, 250).empty());
    EXPECT_FALSE(utility.posterImageForFilePath("/clip.mov"));
    thumbnailer_->before = [] { throw std::bad_alloc(); };
    EXPECT_FALSE(utility.posterImageForFilePath("/clip.mov"));
}

// ---- sizes

struct SizeCase {
    const char* name;
    ImageSize size;
    ImageSize thumbnail;
};

class ThumbnailSize : public testing::TestWithParam<SizeCase> {};

INSTANTIATE_TEST_SUITE_P(Table, ThumbnailSize,
                         testing::Values(SizeCase{"Wide", {1920, 1080}, {192, 108}},
                                         SizeCase{"Tall", {1080, 1920}, {108, 192}},
                                         SizeCase{"Square", {100, 100}, {192, 192}},
                                         SizeCase{"NotWhole", {720, 576}, {192, 153.6}},
                                         SizeCase{"WithoutHeight", {50, 0}, {192, 0}},
                                         SizeCase{"WithoutWidth", {0, 50}, {0, 192}},
                                         SizeCase{"WithoutBoth", {0, 0}, {192, 0}}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(ThumbnailSize, IsFittedTo192) {
    const ImageSize size = QRXQuickTimeImageUtility::thumbnailSizeForImageSize(GetParam().size);
    EXPECT_DOUBLE_EQ(size.width, GetParam().thumbnail.width);
    EXPECT_DOUBLE_EQ(size.height, GetParam().thumbnail.height);
}

// ---- cropping

TEST(Crop, IsEmptyWhereTheRectangleHasNoWidth) {
    EXPECT_TRUE(utility.cropImageToDimensions(plain(4, 4), 0, 10).isEmpty());
}

TEST(Crop, IsEmptyWhereTheRectangleHasNoHeight) {
    EXPECT_TRUE(utility.cropImageToDimensions(plain(4, 4), 10, 0).isEmpty());
}

TEST(Crop, IsEmptyWhereTheSourceHasNoSide) {
    EXPECT_TRUE(utility.cropImageToDimensions({}, 10, 10).isEmpty());
    EXPECT_TRUE(utility.cropImageToDimensions({0, 5, {}}, 10, 10).isEmpty());
    EXPECT_TRUE(utility.cropImageToDimensions({5, 0, {}}, 10, 10).isEmpty());
}

TEST(Crop, IsEmptyForSidesThatNoPictureHas) {
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    for (const float side : {-1.0F, std::nanf(""), kInfinite, -kInfinite, 1e30F}) {
        EXPECT_TRUE(utility.cropImageToDimensions(plain(4, 4), side, 10).isEmpty()) << side;
        EXPECT_TRUE(utility.cropImageToDimensions(plain(4, 4), 10, side).isEmpty()) << side;
    }
    EXPECT_TRUE(utility.cropImageToDimensions(plain(4, 4), 20'000, 20'000).isEmpty());
}

TEST(Crop, IsEmptyForAPictureWithoutItsBytes) {
    EXPECT_TRUE(utility.cropImageToDimensions({4, 4, {}}, 10, 10).isEmpty());
}

TEST(Crop, KeptTheWholeSourceIsScaledAndNothingIsCut) {
    const Image halves =
        picture(4, 1, {10, 10, 10, 255, 10, 10, 10, 255, 90, 90, 90, 255, 90, 90, 90, 255},
                AlphaKind::none);
    const Image cropped = utility.cropImageToDimensions(halves, 2, 3);
    EXPECT_EQ(cropped.width, 2U);
    EXPECT_EQ(cropped.height, 3U);
    const Samples row{10, 10, 10, 255, 90, 90, 90, 255};
    Samples expected;
    for (int i = 0; i < 3; ++i) {
        expected.insert(expected.end(), row.begin(), row.end());
    }
    EXPECT_EQ(samplesOf(cropped), expected);
}

TEST(Crop, PartOfAPixelCountsAsOne) {
    const Image cropped = utility.cropImageToDimensions(plain(4, 4), 2.25F, 0.5F);
    EXPECT_EQ(cropped.width, 3U);
    EXPECT_EQ(cropped.height, 1U);
}

TEST(Crop, WhatIsClearStaysClear) {
    const Image clear = picture(1, 1, {0, 0, 0, 0}, AlphaKind::straight);
    EXPECT_EQ(samplesOf(utility.cropImageToDimensions(clear, 2, 1)), Samples(8, 0));
}

// ---- alpha

TEST(AlphaCopy, IsOpaqueWhereThereWasNoAlpha) {
    const auto copy = utility.copyImageAndAddAlphaChannel(
        picture(2, 1, {1, 2, 3, 255, 4, 5, 6, 255}, AlphaKind::none));
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->alpha, AlphaKind::premultipliedFirst);
    EXPECT_EQ(samplesOf(copy), (Samples{1, 2, 3, 255, 4, 5, 6, 255}));
}

TEST(AlphaCopy, IsOpaqueWhereTheAlphaWasToBeSkipped) {
    const auto copy =
        utility.copyImageAndAddAlphaChannel(picture(1, 1, {1, 2, 3, 77}, AlphaKind::noneSkipFirst));
    EXPECT_EQ(samplesOf(copy), (Samples{1, 2, 3, 255}));
}

TEST(AlphaCopy, ColoursAreMultiplied) {
    const auto copy = utility.copyImageAndAddAlphaChannel(
        picture(2, 1, {200, 100, 50, 128, 200, 100, 50, 0}, AlphaKind::straight));
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->alpha, AlphaKind::premultipliedFirst);
    EXPECT_EQ(samplesOf(copy), (Samples{100, 50, 25, 128, 0, 0, 0, 0}));
}

TEST(AlphaCopy, ColoursAreNotMultipliedTwice) {
    const Image image = picture(1, 1, {100, 50, 25, 128}, AlphaKind::premultipliedFirst);
    EXPECT_EQ(samplesOf(utility.copyImageAndAddAlphaChannel(image)), samplesOf(image));
}

TEST(AlphaCopy, IsNothingForWhatIsNoPicture) {
    EXPECT_FALSE(utility.copyImageAndAddAlphaChannel({}));
    EXPECT_FALSE(utility.copyImageAndAddAlphaChannel({0, 7, {}}));
    EXPECT_FALSE(utility.copyImageAndAddAlphaChannel({2, 2, std::vector<std::byte>(15)}));
    EXPECT_FALSE(utility.copyImageAndAddAlphaChannel({0xFFFFFFFF, 0xFFFFFFFF, {}}));
}

// ---- masks

TEST(Mask, BlackLetsThroughAndWhiteHides) {
    const auto masked =
        utility.maskImage(picture(2, 1, {10, 20, 30, 255, 40, 50, 60, 255}, AlphaKind::none),
                          picture(2, 1, {0, 0, 0, 255, 255, 255, 255, 255}, AlphaKind::none));
    ASSERT_TRUE(masked);
    EXPECT_EQ(masked->alpha, AlphaKind::premultipliedFirst) << "an alpha copy was made";
    EXPECT_EQ(samplesOf(masked), (Samples{10, 20, 30, 255, 0, 0, 0, 0}));
}

TEST(Mask, FirstComponentAloneCounts) {
    const auto masked = utility.maskImage(picture(1, 1, {200, 200, 200, 255}, AlphaKind::none),
                                          picture(1, 1, {127, 0, 255, 3}, AlphaKind::straight));
    EXPECT_EQ(samplesOf(masked), (Samples{100, 100, 100, 128}));
}

TEST(Mask, SkippedAlphaIsReplacedFirst) {
    const auto masked = utility.maskImage(picture(1, 1, {1, 2, 3, 0}, AlphaKind::noneSkipFirst),
                                          picture(1, 1, {0, 0, 0, 0}, AlphaKind::none));
    EXPECT_EQ(samplesOf(masked), (Samples{1, 2, 3, 255}));
}

TEST(Mask, StraightColoursStayAsTheyAre) {
    const auto masked = utility.maskImage(picture(1, 1, {200, 100, 50, 100}, AlphaKind::straight),
                                          picture(1, 1, {127, 0, 0, 255}, AlphaKind::none));
    ASSERT_TRUE(masked);
    EXPECT_EQ(masked->alpha, AlphaKind::straight);
    EXPECT_EQ(samplesOf(masked), (Samples{200, 100, 50, 50}));
}

TEST(Mask, OfAnotherSizeIsLaidOverAllOfThePictureWithoutInterpolation) {
    const Image image = picture(4, 2, Samples(4 * 2 * 4, 255), AlphaKind::none);
    const Image mask = picture(2, 1, {0, 0, 0, 0, 255, 0, 0, 0}, AlphaKind::none);
    const auto masked = utility.maskImage(image, mask);
    ASSERT_TRUE(masked);
    for (std::size_t pixel = 0; pixel < 8; ++pixel) {
        EXPECT_EQ(std::to_integer<int>(masked->rgba[pixel * 4 + 3]), pixel % 4 < 2 ? 255 : 0)
            << pixel;
    }
}

TEST(Mask, IsNothingWhereEitherIsNoPicture) {
    const Image image = plain(2, 2);
    EXPECT_FALSE(utility.maskImage({}, image));
    EXPECT_FALSE(utility.maskImage(image, {}));
    EXPECT_FALSE(utility.maskImage({2, 2, {}}, image));
    EXPECT_FALSE(utility.maskImage(image, {2, 2, std::vector<std::byte>(3)}));
}

}  // namespace
}  // namespace qrx
