#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qrx {

/// `markup` with a line for each tag and a tab for each level, beginning at `depth` tabs; an
/// element that holds text alone stays on one line.
[[nodiscard]] std::string spacedMarkup(std::string_view markup, std::int32_t depth);

/// Drops white space at the end. KEPT: white space at the front stays, though the operation that
/// hosts call is named after both ends; and each UTF-16 unit is narrowed to its low byte, which is
/// read as Latin-1, so that "†" (2020 hex) is a blank.
[[nodiscard]] std::string withoutTrailingWhiteSpace(std::string_view text);

}  // namespace qrx
