#include "platform/linux/PictureScaling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace qrx::platform {

namespace {

constexpr std::size_t kChannels = 4;
constexpr double kFull = 255.0;

using Pixel = std::array<float, kChannels>;

/// The pixels of the source that one pixel of the result is made of: `count` from `first` on. The
/// inner ones weigh the same; all weights together are 1.
struct Share {
    std::size_t first = 0;
    std::size_t count = 1;
    float firstWeight = 1;
    float innerWeight = 0;
    float lastWeight = 0;

    [[nodiscard]] float weight(std::size_t i) const {
        if (i == 0) return firstWeight;
        return i + 1 == count ? lastWeight : innerWeight;
    }
};

/// What lies under [at, at + 1) of the result, when `ratio` source pixels become one.
Share meanShare(std::uint32_t at, double ratio, std::uint32_t sourceCount) {
    const double begin = at * ratio;
    const double end = std::min((at + 1.0) * ratio, static_cast<double>(sourceCount));
    const double low = std::floor(begin);
    const double high = std::ceil(end);
    const double covered = end - begin;
    return {.first = static_cast<std::size_t>(low),
            .count = static_cast<std::size_t>(high - low),
            .firstWeight = static_cast<float>((std::min(low + 1, end) - begin) / covered),
            .innerWeight = static_cast<float>(1 / covered),
            .lastWeight = static_cast<float>((end - (high - 1)) / covered)};
}

/// The two source pixels between whose centres the centre of the result's pixel lies.
Share lineShare(std::uint32_t at, double ratio, std::uint32_t sourceCount) {
    const double last = static_cast<double>(sourceCount) - 1;
    const double centre = std::clamp((at + 0.5) * ratio - 0.5, 0.0, last);
    const double low = std::floor(centre);
    if (low >= last) return {.first = static_cast<std::size_t>(low)};
    const auto second = static_cast<float>(centre - low);
    return {.first = static_cast<std::size_t>(low),
            .count = 2,
            .firstWeight = 1 - second,
            .lastWeight = second};
}

Share shareOf(std::uint32_t at, std::uint32_t count, std::uint32_t sourceCount) {
    const double ratio = static_cast<double>(sourceCount) / count;
    return ratio > 1 ? meanShare(at, ratio, sourceCount) : lineShare(at, ratio, sourceCount);
}

float asFloat(std::byte sample) {
    return static_cast<float>(std::to_integer<int>(sample));
}

std::byte sampleOf(double value) {
    return static_cast<std::byte>(std::lround(std::clamp(value, 0.0, kFull)));
}

bool isMultiplied(AlphaKind kind) {
    return kind != AlphaKind::straight;  // where there is no opacity every pixel is full
}

/// Adds `weight` times one source row, brought to the result's columns. Colours count by their
/// opacity, else what is clear would tint its neighbours.
void addRow(std::vector<Pixel>& sum, const std::vector<Share>& columns, const std::byte* row,
            float weight, bool multiplied) {
    for (std::size_t x = 0; x < columns.size(); ++x) {
        const Share& share = columns[x];
        const std::byte* from = row + share.first * kChannels;
        for (std::size_t i = 0; i < share.count; ++i, from += kChannels) {
            const float ofPixel = weight * share.weight(i);
            const auto alpha = asFloat(from[kChannels - 1]);
            const float ofColour =
                multiplied ? ofPixel : ofPixel * alpha / static_cast<float>(kFull);
            for (std::size_t channel = 0; channel + 1 < kChannels; ++channel) {
                sum[x][channel] += ofColour * asFloat(from[channel]);
            }
            sum[x][kChannels - 1] += ofPixel * alpha;
        }
    }
}

void writePixel(std::byte* to, const Pixel& pixel, bool multiplied) {
    const double alpha = pixel[kChannels - 1];
    const double divisor = multiplied ? 1.0 : alpha / kFull;
    for (std::size_t i = 0; i + 1 < kChannels; ++i) {
        to[i] = divisor > 0 ? sampleOf(pixel[i] / divisor) : std::byte{0};
    }
    to[kChannels - 1] = sampleOf(alpha);
}

}  // namespace

bool isSound(const Image& image) {
    const std::uint64_t pixels = std::uint64_t{image.width} * image.height;
    return pixels != 0 && pixels <= ImageCodec::kMostPixels &&
           image.rgba.size() == pixels * kChannels;
}

Image scaledPicture(const Image& image, std::uint32_t width, std::uint32_t height) {
    Image made{width, height, {}, image.alpha};
    made.rgba.resize(std::size_t{width} * height * kChannels);
    const bool multiplied = isMultiplied(image.alpha);
    std::vector<Share> columns;
    columns.reserve(width);
    for (std::uint32_t x = 0; x < width; ++x) {
        columns.push_back(shareOf(x, width, image.width));
    }
    std::byte* to = made.rgba.data();
    for (std::uint32_t y = 0; y < height; ++y) {
        std::vector<Pixel> sum(width);
        const Share rows = shareOf(y, height, image.height);
        for (std::size_t i = 0; i < rows.count; ++i) {
            const std::size_t from = (rows.first + i) * image.width * kChannels;
            addRow(sum, columns, image.rgba.data() + from, rows.weight(i), multiplied);
        }
        for (const Pixel& pixel : sum) {
            writePixel(to, pixel, multiplied);
            to += kChannels;
        }
    }
    return made;
}

Image fittedInto(const Image& image, std::uint32_t maximumWidth, std::uint32_t maximumHeight) {
    if (image.width <= maximumWidth && image.height <= maximumHeight) return image;
    const double factor = std::min(static_cast<double>(maximumWidth) / image.width,
                                   static_cast<double>(maximumHeight) / image.height);
    const auto side = [&](std::uint32_t pixels, std::uint32_t maximum) {
        const auto fitted = static_cast<std::uint32_t>(std::lround(pixels * factor));
        return std::clamp(fitted, std::uint32_t{1}, maximum);
    };
    return scaledPicture(image, side(image.width, maximumWidth), side(image.height, maximumHeight));
}

Image straightened(Image image) {
    if (image.alpha == AlphaKind::straight || image.alpha == AlphaKind::none) return image;
    const bool hasOpacity = image.alpha == AlphaKind::premultipliedFirst;
    for (std::size_t at = 0; at + kChannels <= image.rgba.size(); at += kChannels) {
        std::byte* const pixel = image.rgba.data() + at;
        const double alpha = std::to_integer<int>(pixel[kChannels - 1]);
        if (!hasOpacity) {
            pixel[kChannels - 1] = std::byte{0xFF};
            continue;
        }
        for (std::size_t i = 0; i + 1 < kChannels && alpha > 0; ++i) {
            pixel[i] = sampleOf(std::to_integer<int>(pixel[i]) * kFull / alpha);
        }
    }
    image.alpha = hasOpacity ? AlphaKind::straight : AlphaKind::none;
    return image;
}

}  // namespace qrx::platform
