#pragma once

#include <cstddef>

namespace qrx::tool {

/// Whether `descriptor` is a terminal.
[[nodiscard]] bool isTerminal(int descriptor);
/// Its width at this moment; 80 when it does not tell.
[[nodiscard]] std::size_t terminalColumns(int descriptor);

}  // namespace qrx::tool
