#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx {

// Sizes are in bytes, and of the item itself: of a symbolic link, the length of its text.

/// Nothing when there is no item at `path`, or it cannot be examined.
[[nodiscard]] std::optional<std::int64_t> itemSize(const FilePath& path);

/// NO when either is missing.
[[nodiscard]] bool sizesAreEqual(const FilePath& a, const FilePath& b);

/// The last `count` bytes of the regular file at `path`, links followed. Nothing when it cannot be
/// read or is shorter.
[[nodiscard]] std::optional<std::vector<std::byte>> lastBytes(const FilePath& path,
                                                              std::uint64_t count);

/// Total size of everything below `folder` that is not a folder, hidden items included. Links are
/// not followed, `folder` itself being one included; what cannot be read counts as empty.
[[nodiscard]] std::uint64_t folderSize(const FilePath& folder);

/// Free bytes, for users without privileges, of the file system that holds `path`.
[[nodiscard]] std::optional<std::uint64_t> freeSpace(const FilePath& path);

/// "1.50 MB": two decimals, decimal units.
/// KEPT: exactly 1,000,000 bytes are "0.00 GB".
[[nodiscard]] std::string sizeText(std::int64_t bytes);

}  // namespace qrx
