#pragma once

#include "foundation/FilePath.h"

namespace qrx {

// The few questions about one item that nearly everybody asks. Links are followed unless the name
// says otherwise; a dangling link, an empty path and a path with a NUL are not there.

/// Whether anything exists at `path`.
[[nodiscard]] bool itemExists(const FilePath& path);
/// Whether a folder, or a link to one, exists at `path`.
[[nodiscard]] bool folderExists(const FilePath& path);
/// Whether something that is not a folder exists at `path`.
[[nodiscard]] bool fileExists(const FilePath& path);
/// Whether opening `path` may block or act on hardware: a FIFO, socket or device. Such items are
/// never opened and never handed to a tool.
[[nodiscard]] bool isSpecialFile(const FilePath& path);

}  // namespace qrx
