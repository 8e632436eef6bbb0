#pragma once

#include "platform/ports/Image.h"

namespace qrx::platform {

/// Every format that gdk-pixbuf has a loader for. Loaders give the colours of a TIFF with opacity
/// multiplied by it, those of every other format straight.
class PixbufImageCodec final : public ImageCodec {
public:
    /// The size is looked at as soon as the file tells it, before anything is allocated for it.
    [[nodiscard]] std::optional<Image> load(const std::string& path) const override;
    [[nodiscard]] std::optional<Image> decoded(std::span<const std::byte> file) const override;
    [[nodiscard]] std::optional<std::vector<std::byte>> encoded(
        const Image& image, const ImageEncoding& encoding) const override;
    [[nodiscard]] std::optional<Image> scaled(const Image& image, std::uint32_t width,
                                              std::uint32_t height) const override;
};

}  // namespace qrx::platform
