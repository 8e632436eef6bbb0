#pragma once

#include "platform/ports/Image.h"

namespace qrx::platform {

/// Every format that gdk-pixbuf has a loader for. Its TIFF loader always gives an opacity, with the
/// colours multiplied by it; here a TIFF that is opaque throughout has none.
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
