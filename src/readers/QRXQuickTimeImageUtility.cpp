#include "readers/QRXQuickTimeImageUtility.h"

#include <algorithm>
#include <cmath>

#include "foundation/NeutralAnswer.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

using platform::AlphaKind;
using platform::Image;
using platform::ImageCodec;

constexpr std::size_t kChannels = 4;
constexpr std::size_t kAlpha = 3;
constexpr unsigned kFull = 255;

bool isSound(const Image& image) {
    const std::uint64_t pixels = std::uint64_t{image.width} * image.height;
    return pixels != 0 && pixels <= ImageCodec::kMostPixels &&
           image.rgba.size() == pixels * kChannels;
}

bool hasAlpha(const Image& image) {
    return image.alpha == AlphaKind::straight || image.alpha == AlphaKind::premultipliedFirst;
}

/// `sample` times `factor`, where 255 is one; rounded.
std::byte product(std::byte sample, std::byte factor) {
    const unsigned exact =
        std::to_integer<unsigned>(sample) * std::to_integer<unsigned>(factor) + kFull / 2;
    return static_cast<std::byte>(exact / kFull);
}

std::byte opposite(std::byte sample) {
    return static_cast<std::byte>(kFull - std::to_integer<unsigned>(sample));
}

std::uint32_t maximumSide(std::uint64_t side) {
    if (side == QRXQuickTimeImageUtility::kNotFound) side = QRXQuickTimeImageUtility::kPosterSide;
    return static_cast<std::uint32_t>(
        std::min<std::uint64_t>(side, std::numeric_limits<std::uint32_t>::max()));
}

/// 0 for what is no side of a picture.
std::uint32_t pixelSide(float side) {
    // Compared this way round, so that what is no number is refused.
    if (!(side > 0) || !(side <= static_cast<float>(ImageCodec::kMostPixels))) return 0;
    return static_cast<std::uint32_t>(std::ceil(side));
}

}  // namespace

std::vector<std::byte> QRXQuickTimeImageUtility::posterImageDataForFilePath(
    const FilePath& file, std::uint64_t width, std::uint64_t height) const {
    return answerOr(std::vector<std::byte>{}, "posterImageDataForFilePath", [&] {
        const auto thumbnail =
            platform::thumbnailer().thumbnail(file, maximumSide(width), maximumSide(height));
        if (!thumbnail) return std::vector<std::byte>{};
        constexpr auto kPoints = static_cast<double>(kPosterSide);
        return platform::imageCodec()
            .encoded(*thumbnail, {.format = platform::ImageFormat::tiff,
                                  .pointsWide = kPoints,
                                  .pointsHigh = kPoints})
            .value_or(std::vector<std::byte>{});
    });
}

// KEPT: neither choice changes anything; hosts pass them all the same.
std::optional<Image> QRXQuickTimeImageUtility::posterImageForFilePath(const FilePath& file,
                                                                      bool /*compressImage*/,
                                                                      bool /*nilOnFail*/) const {
    return answerOr(
        std::optional<Image>(), "posterImageForFilePath", [&]() -> std::optional<Image> {
            const auto data = posterImageDataForFilePath(file, kPosterSide, kPosterSide);
            if (data.empty()) return std::nullopt;
            return platform::imageCodec().decoded(data);
        });
}

ImageSize QRXQuickTimeImageUtility::thumbnailSizeForImageSize(ImageSize size) {
    if (size.height > size.width) {
        return {size.width * kThumbnailSide / size.height, kThumbnailSide};
    }
    if (size.width == 0) return {kThumbnailSide, 0};  // no number divides by nothing
    return {kThumbnailSide, size.height * kThumbnailSide / size.width};
}

Image QRXQuickTimeImageUtility::cropImageToDimensions(const Image& image, float width,
                                                      float height) const {
    return answerOr(Image{}, "cropImageToDimensions", [&] {
        const std::uint32_t pixelsWide = pixelSide(width);
        const std::uint32_t pixelsHigh = pixelSide(height);
        if (pixelsWide == 0 || pixelsHigh == 0 || image.isEmpty()) return Image{};
        // KEPT: the whole source is scaled and nothing is cut; hosts lay out by that.
        // What hosts know as a picture taken through a TIFF file at a compression of 0.9 is the
        // same picture: TIFF files lose nothing, and that factor is one of JPEG.
        return platform::imageCodec().scaled(image, pixelsWide, pixelsHigh).value_or(Image{});
    });
}

std::optional<Image> QRXQuickTimeImageUtility::copyImageAndAddAlphaChannel(
    const Image& image) const {
    return answerOr(std::optional<Image>(), "copyImageAndAddAlphaChannel", [&]() {
        if (!isSound(image)) return std::optional<Image>();
        Image copy = image;
        copy.alpha = AlphaKind::premultipliedFirst;
        if (image.alpha == AlphaKind::premultipliedFirst) return std::optional(std::move(copy));
        for (std::size_t at = 0; at < copy.rgba.size(); at += kChannels) {
            std::byte* const pixel = copy.rgba.data() + at;
            if (!hasAlpha(image)) pixel[kAlpha] = std::byte{kFull};
            for (std::size_t i = 0; i < kAlpha; ++i) {
                pixel[i] = product(pixel[i], pixel[kAlpha]);
            }
        }
        return std::optional(std::move(copy));
    });
}

std::optional<Image> QRXQuickTimeImageUtility::maskImage(const Image& image,
                                                         const Image& mask) const {
    return answerOr(std::optional<Image>(), "maskImage", [&]() -> std::optional<Image> {
        if (!isSound(image) || !isSound(mask)) return std::nullopt;
        auto masked = hasAlpha(image) ? std::optional(image) : copyImageAndAddAlphaChannel(image);
        if (!masked) return std::nullopt;
        // Straight colours do not know of their opacity.
        const std::size_t first = masked->alpha == AlphaKind::straight ? kAlpha : 0;
        std::byte* pixel = masked->rgba.data();
        for (std::uint64_t y = 0; y < image.height; ++y) {
            const std::uint64_t row = y * mask.height / image.height * mask.width;
            for (std::uint64_t x = 0; x < image.width; ++x, pixel += kChannels) {
                const std::uint64_t under = row + x * mask.width / image.width;
                const std::byte opacity = opposite(mask.rgba[under * kChannels]);
                for (std::size_t i = first; i < kChannels; ++i) {
                    pixel[i] = product(pixel[i], opacity);
                }
            }
        }
        return masked;
    });
}

}  // namespace qrx
