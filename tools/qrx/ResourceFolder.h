#pragma once

#include <string>

namespace qrx::tool {

/// The folder with the files that a reset puts back on a card: in the data folder beside this
/// program as it is installed, or in the service's bundle where both are built. Empty when there is
/// none.
[[nodiscard]] std::string resourceFolder();

}  // namespace qrx::tool
