#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qrx {

/// One step through UTF-8 text.
struct Utf8Step {
    char32_t code = 0;       ///< the character, or the value of a byte that is not UTF-8
    std::size_t length = 1;  ///< bytes that it takes
    bool wellFormed = false;
};

/// The character at the start of `text`, which must not be empty. A byte that begins no well-formed
/// sequence (overlong forms and surrogates are none) is a step of its own.
[[nodiscard]] Utf8Step firstUtf8Step(std::string_view text) noexcept;

/// The last character of `text`, which must not be empty; the same steps as from the front.
[[nodiscard]] Utf8Step lastUtf8Step(std::string_view text) noexcept;

/// Appends the UTF-8 form of `code`; U+FFFD in place of a surrogate or a number beyond 10FFFF hex.
void appendUtf8(std::string& text, char32_t code);

/// Whether every byte is below 80 hex.
[[nodiscard]] bool isAscii(std::string_view text) noexcept;

}  // namespace qrx
