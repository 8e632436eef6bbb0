#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/QRXObject.h"
#include "platform/ports/Image.h"

namespace qrx {

struct ImageSize {
    double width = 0;
    double height = 0;
};

/// Posters and thumbnails of video files, by the desktop's thumbnailers, and a few operations on
/// pictures. Holds no state. No operation throws.
class QRXQuickTimeImageUtility : public QRXMediaObject {
public:
    /// Sides of a poster: pixels at most, and points exactly.
    static constexpr std::uint64_t kPosterSide = 250;
    /// A side that the caller does not know; it stands for kPosterSide.
    static constexpr std::uint64_t kNotFound = std::numeric_limits<std::int64_t>::max();
    /// Longer side of thumbnailSizeForImageSize.
    static constexpr double kThumbnailSide = 192;

    [[nodiscard]] static QRXQuickTimeImageUtility qtImageUtility() { return {}; }

    /// A thumbnail of the file in the bytes of a TIFF file; empty when there is none.
    ///
    /// The pixels are the thumbnail's own: inside `width` x `height`, in the proportions of the
    /// clip. The file's resolution says that they are 250 points wide and 250 high, which is the
    /// size that a host's image object gets from it; hosts that draw it in its own proportions
    /// take those of the pixels.
    [[nodiscard]] std::vector<std::byte> posterImageDataForFilePath(const FilePath& file,
                                                                    std::uint64_t width,
                                                                    std::uint64_t height) const;

    /// The picture in the data for 250 x 250; nothing when there is none. Neither choice changes
    /// anything.
    [[nodiscard]] std::optional<platform::Image> posterImageForFilePath(const FilePath& file,
                                                                        bool compressImage,
                                                                        bool nilOnFail) const;
    [[nodiscard]] std::optional<platform::Image> posterImageForFilePath(const FilePath& file,
                                                                        bool nilOnFail) const {
        return posterImageForFilePath(file, false, nilOnFail);
    }
    [[nodiscard]] std::optional<platform::Image> posterImageForFilePath(
        const FilePath& file) const {
        return posterImageForFilePath(file, true);
    }

    /// The size with its longer side (the width, when they are equal) brought to 192, up or down.
    /// Without a width and a height the height stays 0.
    [[nodiscard]] static ImageSize thumbnailSizeForImageSize(ImageSize size);

    /// The whole picture in a rectangle of that size, whatever its own proportions: it is scaled,
    /// not cut. A part of a pixel counts as one. The empty image when a side of either is 0,
    /// negative, no number, or too large for a picture (ImageCodec::kMostPixels).
    [[nodiscard]] platform::Image cropImageToDimensions(const platform::Image& image, float width,
                                                        float height) const;

    /// The same picture with an alpha channel (AlphaKind::premultipliedFirst), fully opaque where
    /// it had none. Nothing for an empty one, or one without the bytes for its pixels.
    [[nodiscard]] std::optional<platform::Image> copyImageAndAddAlphaChannel(
        const platform::Image& image) const;

    /// The picture seen through a mask, which is laid over all of it, without interpolation. The
    /// mask's first component counts, against its direction: 0 lets a pixel through, 255 hides it.
    /// A picture without an alpha channel gets one first. Nothing where either is empty or lacks
    /// the bytes for its pixels.
    [[nodiscard]] std::optional<platform::Image> maskImage(const platform::Image& image,
                                                           const platform::Image& mask) const;
};

}  // namespace qrx
