#pragma once

#include <string_view>

namespace qrx::tool {

/// A file of the folder page/, built into the program.
struct PageFile {
    std::string_view text;
    std::string_view sha256;  ///< of the text, as 64 hex digits
};

[[nodiscard]] PageFile pageTemplate();
[[nodiscard]] PageFile pageStyle();
[[nodiscard]] PageFile pageScript();

}  // namespace qrx::tool
