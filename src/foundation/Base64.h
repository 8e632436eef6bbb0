#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qrx {

// RFC 4648 section 4: with padding, without line ends.

[[nodiscard]] std::string base64(std::string_view bytes);

/// The bytes that `base64` wrote as `text`; nothing for any other text.
[[nodiscard]] std::optional<std::string> bytesOfBase64(std::string_view text);

}  // namespace qrx
