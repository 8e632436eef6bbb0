#pragma once

#include <optional>
#include <string_view>

#include "foundation/FilePath.h"

namespace qrx {

enum class SubPath { anywhere, atEnd };

/// Whether something below `folder` looks like a card's layout: its full path (the folder's own
/// text included) contains `subPath`, or ends with it, case-sensitive. With an `extension` that
/// item must also be a folder holding, one level down, an entry whose name ends with it in any
/// case; the search goes on through the whole tree until one does. Items in hidden folders at the
/// top level do not count; hidden ones further down do.
[[nodiscard]] bool folderHoldsLayout(const FilePath& folder, std::string_view subPath,
                                     SubPath where, std::optional<std::string_view> extension);

}  // namespace qrx
