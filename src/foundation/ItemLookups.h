#pragma once

#include <optional>

#include "foundation/FilePath.h"
#include "platform/ports/Image.h"

namespace qrx {

/// Whether the item at `path` is itself a symbolic link, wherever that leads.
[[nodiscard]] bool isSymbolicLink(const FilePath& path);

/// Where a symbolic link leads in the end, absolute and without links on the way. `path` unchanged
/// when it is no link or leads nowhere; links before its last component alone do not count.
[[nodiscard]] FilePath resolvedLink(const FilePath& path);

/// A picture that stands for any item, 32 x 32 pixels; the empty image for an absent path.
[[nodiscard]] platform::Image itemImage(const std::optional<FilePath>& path);

}  // namespace qrx
