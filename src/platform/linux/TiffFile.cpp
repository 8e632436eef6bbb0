#include "platform/linux/TiffFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

namespace qrx::platform {

namespace {

constexpr double kPointsPerInch = 72;
constexpr std::uint32_t kResolutionDivisor = 1000;
constexpr std::uint32_t kHeaderBytes = 8;
constexpr std::uint32_t kEntryBytes = 12;

// Field types.
constexpr std::uint16_t kShort = 3;
constexpr std::uint16_t kLong = 4;
constexpr std::uint16_t kRational = 5;

struct Entry {
    std::uint16_t tag;
    std::uint16_t type;
    std::uint32_t count;
    std::uint32_t value;  // or where the values lie, when they are more than four bytes
};

class Writer {
public:
    explicit Writer(std::size_t expected) { bytes_.reserve(expected); }

    void put16(std::uint16_t value) { put(value, 2); }
    void put32(std::uint32_t value) { put(value, 4); }
    void putByte(std::byte value) { bytes_.push_back(value); }
    [[nodiscard]] std::vector<std::byte> take() { return std::move(bytes_); }

private:
    void put(std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i, value >>= 8U) {
            bytes_.push_back(static_cast<std::byte>(value & 0xFFU));
        }
    }

    std::vector<std::byte> bytes_;
};

/// Thousandths of a dot per inch.
std::uint32_t resolution(std::uint32_t pixels, double points) {
    const double most = std::numeric_limits<std::uint32_t>::max();
    const double dots = pixels * kPointsPerInch / points * kResolutionDivisor;
    return static_cast<std::uint32_t>(std::clamp(std::round(dots), 1.0, most));
}

}  // namespace

std::vector<std::byte> tiffFile(const Image& image, const ImageEncoding& encoding) {
    const bool hasOpacity = image.alpha == AlphaKind::straight;
    const bool hasSize = encoding.pointsWide > 0 && encoding.pointsHigh > 0;
    const std::uint16_t samples = hasOpacity ? 4 : 3;
    const auto entries = static_cast<std::uint16_t>(10 + (hasSize ? 3 : 0) + (hasOpacity ? 1 : 0));
    // After the directory: bits of each sample, the two resolutions, the pixels.
    const std::uint32_t bitsAt = kHeaderBytes + 2 + entries * kEntryBytes + 4;
    const std::uint32_t resolutionsAt = bitsAt + 4 * 2;
    const std::uint32_t pixelsAt = resolutionsAt + 2 * 8;
    const auto pixelBytes = static_cast<std::uint32_t>(image.rgba.size() / 4 * samples);

    std::vector<Entry> directory{
        {256, kLong, 1, image.width},
        {257, kLong, 1, image.height},
        {258, kShort, samples, bitsAt},  // bits of each sample
        {259, kShort, 1, 1},             // not packed
        {262, kShort, 1, 2},             // red, green, blue
        {273, kLong, 1, pixelsAt},       // one strip
        {277, kShort, 1, samples},
        {278, kLong, 1, image.height},
        {279, kLong, 1, pixelBytes},
    };
    if (hasSize) {
        directory.push_back({282, kRational, 1, resolutionsAt});
        directory.push_back({283, kRational, 1, resolutionsAt + 8});
    }
    directory.push_back({284, kShort, 1, 1});                  // samples of a pixel stand together
    if (hasSize) directory.push_back({296, kShort, 1, 2});     // per inch
    if (hasOpacity) directory.push_back({338, kShort, 1, 2});  // the fourth is opacity, straight

    Writer file(std::size_t{pixelsAt} + pixelBytes);
    file.put16(0x4949);  // "II": little-endian
    file.put16(42);
    file.put32(kHeaderBytes);
    file.put16(entries);
    for (const Entry& entry : directory) {
        file.put16(entry.tag);
        file.put16(entry.type);
        file.put32(entry.count);
        file.put32(entry.value);
    }
    file.put32(0);  // no further directory
    for (int i = 0; i < 4; ++i) {
        file.put16(8);
    }
    file.put32(hasSize ? resolution(image.width, encoding.pointsWide) : 0);
    file.put32(kResolutionDivisor);
    file.put32(hasSize ? resolution(image.height, encoding.pointsHigh) : 0);
    file.put32(kResolutionDivisor);
    for (std::size_t at = 0; at < image.rgba.size(); at += 4) {
        for (std::size_t i = 0; i < samples; ++i) {
            file.putByte(image.rgba[at + i]);
        }
    }
    return file.take();
}

}  // namespace qrx::platform
