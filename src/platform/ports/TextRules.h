#pragma once

#include <string>
#include <string_view>

namespace qrx::platform {

/// The rules of Unicode that need tables. Locale-free.
class TextRules {
public:
    virtual ~TextRules() = default;

    /// Full case mapping of UTF-8 text ("ß" gives "SS"). Bytes that are not UTF-8 stay as they are.
    [[nodiscard]] virtual std::string upperCased(std::string_view text) const = 0;
    [[nodiscard]] virtual std::string lowerCased(std::string_view text) const = 0;

    /// Whether `code` is a decimal digit (category Nd) of any script.
    [[nodiscard]] virtual bool isDecimalDigit(char32_t code) const = 0;
    /// Whether `code` is a letter or a mark (categories L and M).
    [[nodiscard]] virtual bool isLetterOrMark(char32_t code) const = 0;
};

}  // namespace qrx::platform
