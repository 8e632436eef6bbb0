#pragma once

#include "foundation/FilePath.h"

namespace qrx {

/// REMOVES every entry of the folder `drive`, in name order, folders with all that is in them; the
/// folder itself stays. Links are removed themselves and never followed.
///
/// @return NO at the first entry that cannot be removed, and the later ones stay; YES when nothing
///         is left or there was nothing to list. Where `drive` is itself a link nothing is touched
///         and the answer is NO.
[[nodiscard]] bool removeEveryEntryOf(const FilePath& drive);

}  // namespace qrx
