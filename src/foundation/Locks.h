#pragma once

#include <cstdint>
#include <string>

#include "foundation/FilePath.h"

namespace qrx {

// The lock is the immutable flag, set on an item and everything below it: `chflags` sets it where
// it is installed, else `chattr`, which needs root and a file system that has the flag.

/// Whether the flag was set on everything.
[[nodiscard]] bool lockItem(const FilePath& path);
/// Whether the flag was removed from everything; otherwise the tool's exit status is logged.
[[nodiscard]] bool unlockItem(const FilePath& path);
/// As `unlockItem`, but NO at once when the user may not write the folder.
[[nodiscard]] bool unlockFolder(const FilePath& path);

/// Permission bits (07777) of the item, links followed; 0 when they cannot be read.
[[nodiscard]] std::uint32_t permissionsOf(const FilePath& path);
/// Whether the user may write the item.
[[nodiscard]] bool isWritable(const FilePath& path);

// The lines that the operations stand for, for the log; no shell is ever given them.

[[nodiscard]] std::string lockLine(const FilePath& path);
[[nodiscard]] std::string unlockLine(const FilePath& path);

}  // namespace qrx
