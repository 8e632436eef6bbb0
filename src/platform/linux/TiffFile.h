#pragma once

#include <cstddef>
#include <vector>

#include "platform/ports/Image.h"

namespace qrx::platform {

/// The bytes of a TIFF file (revision 6.0, little-endian, not packed) with a sound, straightened
/// picture. Written here because gdk-pixbuf writes whole dots per inch only, which cannot say, for
/// one, that 141 pixels are 250 points high.
[[nodiscard]] std::vector<std::byte> tiffFile(const Image& image, const ImageEncoding& encoding);

}  // namespace qrx::platform
