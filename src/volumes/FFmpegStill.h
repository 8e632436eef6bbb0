#pragma once

#include "foundation/FilePath.h"
#include "platform/ports/Image.h"

namespace qrx {

/// A picture of the movie at `file`, which the ffmpeg tool makes as a file in `folder`; that file
/// is removed again. The empty image when the tool made none or it cannot be read as a picture.
[[nodiscard]] platform::Image ffmpegStill(const FilePath& file, const FilePath& folder);

}  // namespace qrx
