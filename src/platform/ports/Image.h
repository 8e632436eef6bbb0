#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qrx::platform {

/// What the fourth byte of a pixel means. In memory it always is the fourth; the names follow what
/// hosts call a pixel format.
enum class AlphaKind : std::uint8_t {
    straight,            ///< opacity; the colours are not multiplied by it (what most files hold)
    premultipliedFirst,  ///< opacity; the colours are multiplied by it
    none,                ///< there is no opacity, the byte is 255
    noneSkipFirst,       ///< there is no opacity, the byte can be anything
};

/// A picture in memory. Without pixels (0 x 0) it is the empty image.
struct Image {
    std::uint32_t width = 0;      ///< pixels
    std::uint32_t height = 0;     ///< pixels
    std::vector<std::byte> rgba;  ///< 4 bytes a pixel, rows from the top, no padding
    AlphaKind alpha = AlphaKind::straight;

    [[nodiscard]] bool isEmpty() const { return width == 0 || height == 0; }
};

enum class ImageFormat : std::uint8_t { tiff, png, jpeg };

/// How a picture is written.
struct ImageEncoding {
    ImageFormat format = ImageFormat::png;
    int jpegQuality = 85;  ///< 0 to 100; of JPEG alone
    /// How large the picture is on paper, in points (1/72 inch), written as the file's resolution;
    /// 0 when nothing is to be said. TIFF says it to a thousandth of a dot per inch; PNG and JPEG
    /// know whole dots per inch only.
    double pointsWide = 0;
    double pointsHigh = 0;
};

/// Reads, writes and scales pictures.
class ImageCodec {
public:
    /// Pictures with more pixels than this are refused (100 megapixels).
    static constexpr std::uint64_t kMostPixels = 100'000'000;

    virtual ~ImageCodec() = default;

    /// The picture in the file at `path`; nothing when it is missing, not a picture, damaged, or
    /// larger than kMostPixels.
    [[nodiscard]] virtual std::optional<Image> load(const std::string& path) const = 0;

    /// The picture in the bytes of a file, as `load` reads it.
    [[nodiscard]] virtual std::optional<Image> decoded(std::span<const std::byte> file) const = 0;

    /// The bytes of a file that holds `image`; nothing for an empty one, one larger than
    /// kMostPixels, or one whose bytes are not as many as its pixels ask for. JPEG has no opacity:
    /// the picture stands on white.
    [[nodiscard]] virtual std::optional<std::vector<std::byte>> encoded(
        const Image& image, const ImageEncoding& encoding) const = 0;

    /// All of `image` in a rectangle of `width` x `height` pixels, whatever its own proportions;
    /// nothing where `encoded` gives nothing, or where the rectangle is empty or too large.
    [[nodiscard]] virtual std::optional<Image> scaled(const Image& image, std::uint32_t width,
                                                      std::uint32_t height) const = 0;
};

}  // namespace qrx::platform
