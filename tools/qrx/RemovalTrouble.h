#pragma once

#include <optional>
#include <string>

#include "foundation/FilePath.h"

namespace qrx::tool {

/// Whether the file system at `path` cannot be written to: a write-protected card.
[[nodiscard]] bool isOnReadOnlyFileSystem(const FilePath& path);

/// Whether another file system is mounted at the folder `path`.
[[nodiscard]] bool isMountPoint(const FilePath& path);

/// Why the item at `path` cannot be removed, in words for whoever stands before the card: "is
/// protected against changes (chattr -i lifts that)". Nothing when it shows no reason, or is gone.
/// A link is looked at itself.
[[nodiscard]] std::optional<std::string> whyNotRemovable(const FilePath& path);

}  // namespace qrx::tool
