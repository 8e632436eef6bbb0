#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qrx {

// Rules of text. Strings are UTF-8; names that are not UTF-8 are kept byte for byte, and every
// function here passes such bytes through unchanged. An EMPTY pattern is found nowhere: it is
// neither a beginning, nor an end, nor contained, and replacing it changes nothing.

/// Full Unicode case mapping, locale-free: "ß" gives "SS". ASCII text takes a fast path.
[[nodiscard]] std::string upperCased(std::string_view text);
[[nodiscard]] std::string lowerCased(std::string_view text);

/// Literal and case-sensitive; NO for an empty `pattern` and for one longer than the text.
[[nodiscard]] bool beginsWith(std::string_view text, std::string_view pattern);
[[nodiscard]] bool endsWith(std::string_view text, std::string_view pattern);
[[nodiscard]] bool contains(std::string_view text, std::string_view pattern);
/// As `contains` for the pattern that `first` and `second` give when joined.
[[nodiscard]] bool containsInARow(std::string_view text, std::string_view first,
                                  std::string_view second);

/// Byte position of the first occurrence; nothing when there is none or `pattern` is empty.
[[nodiscard]] std::optional<std::size_t> find(std::string_view text, std::string_view pattern);
/// As `find`, ASCII letters of either case being equal.
[[nodiscard]] std::optional<std::size_t> findIgnoringCase(std::string_view text,
                                                          std::string_view pattern);

/// n separators give n + 1 pieces, empty ones kept; an empty separator gives the whole text.
[[nodiscard]] std::vector<std::string> split(std::string_view text, std::string_view separator);

/// Every occurrence, from the left, without overlap or rescan.
[[nodiscard]] std::string replaceAll(std::string_view text, std::string_view target,
                                     std::string_view replacement);
/// As `replaceAll`, ASCII letters of either case being equal.
[[nodiscard]] std::string replaceAllIgnoringCase(std::string_view text, std::string_view target,
                                                 std::string_view replacement);

/// Drops TAB and the Unicode blanks (U+0020, 00A0, 1680, 2000-200B, 202F, 205F, 3000) at both ends;
/// line ends stay.
[[nodiscard]] std::string trimBlanks(std::string_view text);
/// As `trimBlanks`, and U+000A-000D, 0085, 2028, 2029 too.
[[nodiscard]] std::string trimBlanksAndLineEnds(std::string_view text);
/// Drops letters and marks (categories L and M) at both ends.
[[nodiscard]] std::string trimLetters(std::string_view text);
/// Drops everything but decimal digits (of any script) at both ends; what lies between stays.
[[nodiscard]] std::string trimNonDigits(std::string_view text);

/// Compares lower-cased text unit by unit: "_" sorts before letters, "CLIP10" before "CLIP9".
/// Negative, zero or positive.
[[nodiscard]] int compareIgnoringCase(std::string_view a, std::string_view b);

/// Ascending by lower-cased text, ties by bytes: the order of every listing.
[[nodiscard]] bool precedesInNameOrder(std::string_view a, std::string_view b);

/// The UTF-16 code units of UTF-8 text; a byte that is not UTF-8 gives one unit of its own value.
[[nodiscard]] std::u16string utf16Units(std::string_view text);
/// The reverse; an unpaired surrogate becomes U+FFFD.
[[nodiscard]] std::string fromUtf16Units(std::u16string_view units);
/// Whether `text` is well-formed UTF-8.
[[nodiscard]] bool isUtf8(std::string_view text);
/// UTF-8 of the character `code` (Latin-1 for 80 to FF hex).
[[nodiscard]] std::string characterText(char32_t code);

/// The leading integer: blanks and line ends skipped, an optional sign, ASCII digits, stops at
/// anything else; no digits give 0; out of range clamps.
[[nodiscard]] std::int32_t int32Value(std::string_view text);
[[nodiscard]] std::int64_t int64Value(std::string_view text);
/// The leading decimal number, locale-free, with exponent; no hexadecimal, "inf" or "nan" (0).
/// Values too large give infinity.
[[nodiscard]] double doubleValue(std::string_view text);
/// Blanks, sign and zeros skipped; then Y, y, T, t or 1-9 means YES.
[[nodiscard]] bool boolValue(std::string_view text);

/// "%.<decimals>f" of the exact binary value, of any length.
[[nodiscard]] std::string fixedDecimals(double value, int decimals);
/// The number as text, "%.16g": 29.97, 24, 0, 1e+20.
[[nodiscard]] std::string numberText(double value);
[[nodiscard]] std::string numberText(std::int64_t value);

}  // namespace qrx
