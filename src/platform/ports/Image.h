#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qrx::platform {

/// A picture in memory. Without pixels (0 x 0) it is the empty image.
struct Image {
    std::uint32_t width = 0;      ///< pixels
    std::uint32_t height = 0;     ///< pixels
    std::vector<std::byte> rgba;  ///< 4 bytes a pixel, rows from the top, no padding

    [[nodiscard]] bool isEmpty() const { return width == 0 || height == 0; }
};

/// Reads pictures.
class ImageCodec {
public:
    /// Pictures with more pixels than this are refused (100 megapixels).
    static constexpr std::uint64_t kMostPixels = 100'000'000;

    virtual ~ImageCodec() = default;

    /// The picture in the file at `path`; nothing when it is missing, not a picture, damaged, or
    /// larger than kMostPixels.
    [[nodiscard]] virtual std::optional<Image> load(const std::string& path) const = 0;
};

}  // namespace qrx::platform
