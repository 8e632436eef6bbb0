#pragma once

#include <cstdint>

namespace qrx {

/// Whether "ps" lists the process: its output contains the identifier in decimal. NO too when "ps"
/// cannot be run.
[[nodiscard]] bool processIsListed(std::int32_t processIdentifier);

}  // namespace qrx
