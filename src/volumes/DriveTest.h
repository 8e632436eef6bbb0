#pragma once

#include <span>
#include <string_view>

#include "foundation/FilePath.h"

namespace qrx {

/// Whether `drive` is, as a text, one of the removable drives and something exists at each of the
/// paths `items` below it. They are looked for in their order, up to the first that is missing.
[[nodiscard]] bool isRemovableDriveHolding(const FilePath& drive,
                                           std::span<const std::string_view> items);

}  // namespace qrx
