#pragma once

#include "foundation/FilePath.h"

namespace qrx {

// Removing. Nothing outside the item that was named is ever touched: a symbolic link below it is an
// item of its own, removed itself and never entered, and every step down is made from the folder
// before it, so that a link put in place of a folder meanwhile leads nowhere. What was removed
// before a step fails stays removed.

/// Removes the item at `path`, a folder with everything in it; of a link the link. NO when it is
/// missing, when a step fails (the rest then stays), and for the root folder, which is refused.
[[nodiscard]] bool removeItem(const FilePath& path);

/// Removes every item below `folder` that is not a folder, hidden ones too; all folders stay. Stops
/// with NO at the first that cannot be removed, at a link that leads nowhere and at a folder that
/// cannot be read; NO also when `folder`, which may be a link to a folder, is none.
[[nodiscard]] bool clearFolder(const FilePath& folder);

/// Removes the folders in `folder` with everything in them, except those whose name contains
/// "CONTENTS" (case-sensitive) and those behind links. Stops at the first that cannot be removed
/// and at a link that leads nowhere.
void removeFoldersIn(const FilePath& folder);

}  // namespace qrx
