#include "foundation/ItemLookups.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include <sys/stat.h>

namespace qrx {

namespace {

constexpr std::uint32_t kImageSide = 32;  // pixels
constexpr std::uint32_t kMargin = 4;      // transparent pixels around the sheet

using Pixel = std::array<std::uint8_t, 4>;  // red, green, blue, opacity

constexpr Pixel kClear{0, 0, 0, 0};
constexpr Pixel kEdge{0x80, 0x80, 0x80, 0xFF};
constexpr Pixel kSheet{0xF4, 0xF4, 0xF4, 0xFF};

/// A blank sheet with an edge.
const Pixel& pixelAt(std::uint32_t column, std::uint32_t row) {
    const auto isWithin = [](std::uint32_t at, std::uint32_t margin) {
        return at >= margin && at < kImageSide - margin;
    };
    if (!isWithin(column, kMargin) || !isWithin(row, kMargin)) return kClear;
    const bool inside = isWithin(column, kMargin + 1) && isWithin(row, kMargin + 1);
    return inside ? kSheet : kEdge;
}

}  // namespace

bool isSymbolicLink(const FilePath& path) {
    struct stat item {};
    return path.find('\0') == FilePath::npos && ::lstat(path.c_str(), &item) == 0 &&
           S_ISLNK(item.st_mode);
}

FilePath resolvedLink(const FilePath& path) {
    if (!isSymbolicLink(path)) return path;
    const std::unique_ptr<char, decltype(&std::free)> target(::realpath(path.c_str(), nullptr),
                                                             &std::free);
    return target ? FilePath(target.get()) : path;
}

platform::Image itemImage(const std::optional<FilePath>& path) {
    if (!path) return {};
    platform::Image image{kImageSide, kImageSide, {}};
    for (std::uint32_t row = 0; row < kImageSide; ++row) {
        for (std::uint32_t column = 0; column < kImageSide; ++column) {
            for (const std::uint8_t value : pixelAt(column, row)) {
                image.rgba.push_back(std::byte{value});
            }
        }
    }
    return image;
}

}  // namespace qrx
