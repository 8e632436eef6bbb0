#pragma once

#include <cstdint>

#include "platform/ports/Image.h"

namespace qrx::platform {

/// Whether the picture has pixels, no more than ImageCodec::kMostPixels, and the bytes for them.
[[nodiscard]] bool isSound(const Image& image);

/// All of a sound picture in `width` x `height` pixels, neither of them 0: the mean of what a pixel
/// covers where it shrinks, the line between neighbours where it grows. Needs little memory beside
/// the result.
[[nodiscard]] Image scaledPicture(const Image& image, std::uint32_t width, std::uint32_t height);

/// A sound picture scaled so that it just fits inside the maximum (no side of which is 0), its
/// proportions kept; unchanged when it fits as it is. No side of it vanishes.
[[nodiscard]] Image fittedInto(const Image& image, std::uint32_t maximumWidth,
                               std::uint32_t maximumHeight);

/// The picture as AlphaKind::straight, or as AlphaKind::none when it has no opacity.
[[nodiscard]] Image straightened(Image image);

}  // namespace qrx::platform
