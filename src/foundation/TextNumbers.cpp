#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

#include "foundation/Text.h"
#include "foundation/Utf8.h"

namespace qrx {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Number of ASCII digits at the start of `text`.
std::size_t digitsAtStart(std::string_view text) {
    std::size_t count = 0;
    while (count < text.size() && isDigit(text[count]))
        ++count;
    return count;
}

/// Takes a sign from the front of `text`; whether it was a minus.
bool takeSign(std::string_view& text) {
    if (text.empty() || (text.front() != '+' && text.front() != '-')) return false;
    const bool minus = text.front() == '-';
    text.remove_prefix(1);
    return minus;
}

template <class Integer>
Integer clampedInteger(std::string_view text) {
    using Limits = std::numeric_limits<Integer>;
    const std::string trimmed = trimBlanksAndLineEnds(text);
    std::string_view rest = trimmed;
    const bool minus = takeSign(rest);
    std::string digits(rest.substr(0, digitsAtStart(rest)));
    if (digits.empty()) return 0;
    if (minus) digits.insert(digits.begin(), '-');  // -2147483648 has no positive counterpart
    Integer value = 0;
    const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (fault == std::errc::result_out_of_range) return minus ? Limits::min() : Limits::max();
    return value;
}

/// The length of the decimal number at the start of `text`, which has no sign; 0 when there is
/// none.
std::size_t decimalLength(std::string_view text) {
    const std::size_t whole = digitsAtStart(text);
    std::size_t length = whole;
    std::size_t fraction = 0;
    if (length < text.size() && text[length] == '.') {
        fraction = digitsAtStart(text.substr(length + 1));
        length += 1 + fraction;
    }
    if (whole + fraction == 0) return 0;
    if (length >= text.size() || (text[length] != 'e' && text[length] != 'E')) return length;
    std::string_view exponent = text.substr(length + 1);
    const std::size_t before = exponent.size();
    takeSign(exponent);
    const std::size_t digits = digitsAtStart(exponent);
    return digits == 0 ? length : length + 1 + (before - exponent.size()) + digits;
}

/// Whether a decimal number that does not fit a double is too large, rather than too small: its
/// first digit other than 0 stands left of the point once the exponent is applied.
bool isTooLarge(std::string_view decimal) {
    const std::size_t e = decimal.find_first_of("eE");
    const std::string_view mantissa = decimal.substr(0, e);
    const std::int64_t exponent =
        e == std::string_view::npos ? 0 : clampedInteger<std::int32_t>(decimal.substr(e + 1));
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = std::min(mantissa.find_first_of("123456789"), mantissa.size());
    return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) + exponent > 0;
}

/// Long enough for the largest double (309 digits), sign, point and the decimals asked for.
constexpr std::size_t kLongestWholePart = 320;

}  // namespace

std::int32_t int32Value(std::string_view text) {
    return clampedInteger<std::int32_t>(text);
}

std::int64_t int64Value(std::string_view text) {
    return clampedInteger<std::int64_t>(text);
}

double doubleValue(std::string_view text) {
    const std::string trimmed = trimBlanksAndLineEnds(text);
    std::string_view rest = trimmed;
    const bool minus = takeSign(rest);
    const std::string_view decimal = rest.substr(0, decimalLength(rest));
    if (decimal.empty()) return 0;
    double value = 0;
    const auto [end, fault] =
        std::from_chars(decimal.data(), decimal.data() + decimal.size(), value);
    if (fault == std::errc::result_out_of_range) {
        value = isTooLarge(decimal) ? std::numeric_limits<double>::infinity() : 0;
    }
    return minus ? -value : value;
}

bool boolValue(std::string_view text) {
    const std::string trimmed = trimBlanks(text);
    std::string_view rest = trimmed;
    takeSign(rest);
    rest.remove_prefix(std::min(rest.find_first_not_of('0'), rest.size()));
    return !rest.empty() && std::string_view("YyTt123456789").find(rest.front()) != rest.npos;
}

std::string fixedDecimals(double value, int decimals) {
    std::string text(kLongestWholePart + static_cast<std::size_t>(std::max(decimals, 0)), '\0');
    const auto [end, fault] = std::to_chars(text.data(), text.data() + text.size(), value,
                                            std::chars_format::fixed, std::max(decimals, 0));
    text.resize(fault == std::errc() ? static_cast<std::size_t>(end - text.data()) : 0);
    return text;
}

std::string numberText(double value) {
    std::array<char, 32> text{};
    const auto [end, fault] = std::to_chars(text.data(), text.data() + text.size(), value,
                                            std::chars_format::general, 16);
    return {text.data(), fault == std::errc() ? end : text.data()};
}

std::string numberText(std::int64_t value) {
    return std::to_string(value);
}

}  // namespace qrx
