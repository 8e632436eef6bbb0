#pragma once

#include <string_view>

#include "foundation/FilePath.h"

namespace qrx {

/// Puts `contents` in the place of what the regular file at `path` holds, so that at every moment,
/// also after a fault or a loss of power, the file has either its old or its new contents. They are
/// written to a temporary file beside it, which then takes its name and keeps its permissions.
///
/// @return whether that succeeded. NO, and nothing changed, for what is no regular file (a symbolic
///         link included), for one that may not be written, and when the disk is full.
[[nodiscard]] bool replaceFileContents(const FilePath& path, std::string_view contents);

}  // namespace qrx
