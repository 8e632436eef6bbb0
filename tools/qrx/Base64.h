#pragma once

#include <string>
#include <string_view>

namespace qrx::tool {

/// RFC 4648 section 4, with padding, without line ends.
[[nodiscard]] std::string base64(std::string_view bytes);

}  // namespace qrx::tool
