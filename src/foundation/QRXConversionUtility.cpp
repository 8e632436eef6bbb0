#include "foundation/QRXConversionUtility.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "foundation/NeutralAnswer.h"
#include "foundation/Text.h"
#include "foundation/Utf8.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";
constexpr std::int32_t kBitsPerHexDigit = 4;
constexpr double kTwoToThe64 = 18446744073709551616.0;
constexpr double kSecondsPerHour = 3600.0;
constexpr double kSecondsPerMinute = 60.0;
constexpr double kBytesPerMegabyte = 1e6;
constexpr double kBytesPerGigabyte = 1e9;

bool isDecimalDigit(const Utf8Step& step) {
    if (!step.wellFormed) return false;
    if (step.code < 0x80) return step.code >= '0' && step.code <= '9';
    return platform::textRules().isDecimalDigit(step.code);
}

/// Value of one hex digit of either case; nothing for any other character.
std::optional<std::int64_t> hexDigitValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return std::nullopt;
}

template <class Write>
std::string eachUnit(std::string_view text, Write&& write) {
    std::string result;
    for (const char16_t unit : utf16Units(text)) {
        result += write(unit);
    }
    return result;
}

std::string numberInBase(std::uint32_t number, int base) {
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, base);
    return {digits.data(), end.ptr};
}

/// As many whole measures as go into `rest`, which keeps what they leave; at least 0. Counting them
/// one by one would never end for a huge `rest`.
std::int32_t wholeMeasures(double& rest, double measure) {
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    if (!(rest >= measure)) return 0;
    double count = std::min(std::floor(rest / measure), kMost);
    while (count > 0.0 && count * measure > rest)
        count -= 1.0;  // the quotient was rounded up
    rest -= count * measure;
    return static_cast<std::int32_t>(count);
}

std::string atLeastTwoDigits(std::int32_t number) {
    const std::string digits = std::to_string(number);
    return number > 9 ? digits : "0" + digits;
}

}  // namespace

QRXConversionUtility QRXConversionUtility::conversionUtility() {
    return {};
}

std::int64_t QRXConversionUtility::decimalValueForText(std::string_view text) {
    return answerOr(std::int64_t{0}, "decimalValueForText", [&] {
        std::string digits;
        while (!text.empty()) {
            const Utf8Step step = firstUtf8Step(text);
            if (isDecimalDigit(step)) digits.append(text.substr(0, step.length));
            text.remove_prefix(step.length);
        }
        return int64Value(digits);
    });
}

// ---- texts and their codes

std::string QRXConversionUtility::stringToHex(std::string_view text) {
    return answerOr(std::string{}, "stringToHex", [&] {
        return eachUnit(text, [](char16_t unit) { return numberInBase(unit, 16); });
    });
}

std::string QRXConversionUtility::stringFromHex(std::string_view hex) {
    return answerOr(std::string{}, "stringFromHex", [&] {
        const std::u16string units = utf16Units(hex);
        std::string result;
        for (std::size_t i = 0; i + 1 < units.size(); i += 2) {
            // Characters are cut to their low byte, so one outside ASCII can pass for a digit.
            const std::array<char, 3> pair{static_cast<char>(units[i] & 0xFF),
                                           static_cast<char>(units[i + 1] & 0xFF), '\0'};
            const long code = std::strtol(pair.data(), nullptr, 16);
            result += characterText(static_cast<char32_t>(code & 0xFF));
        }
        return result;
    });
}

std::string QRXConversionUtility::stringToAscii(std::string_view text) {
    return answerOr(std::string{}, "stringToAscii", [&] {
        return eachUnit(text, [](char16_t unit) { return numberInBase(unit, 10); });
    });
}

std::string QRXConversionUtility::textFromAsciiData(std::span<const std::byte> data) {
    return textFromAsciiHexString(dataToString(data));
}

std::string QRXConversionUtility::textFromAsciiHexString(std::string_view hex) {
    return answerOr(std::string(hex), "textFromAsciiHexString", [&] {
        const std::u16string units = utf16Units(hex);
        if (units.size() % 2 != 0) return std::string(hex);
        std::string result;
        for (std::size_t i = 0; i < units.size(); i += 2) {
            const auto bits = hexToBinary(fromUtf16Units({units.data() + i, 2}));
            const std::uint64_t code = bits ? binaryToNumber(*bits).value_or(0) : 0;
            if (code != 0) result += characterText(static_cast<char32_t>(code));
        }
        return result;
    });
}

// ---- hexadecimal, binary, numbers

std::string QRXConversionUtility::validHexCharacters() {
    return "0123456789ABCDEFabcdef";
}

std::optional<std::string> QRXConversionUtility::hexToBinary(std::string_view hex) {
    using Answer = std::optional<std::string>;
    return answerOr(Answer{}, "hexToBinary", [&]() -> Answer {
        std::string bits;
        for (const char digit : hex) {
            const auto value = hexDigitValue(digit);
            if (!value) return std::nullopt;
            const bool leadingZero = *value == 0 && bits.empty();
            if (!leadingZero) bits += numberToBinary(*value, kBitsPerHexDigit);
        }
        return bits;
    });
}

std::optional<std::uint64_t> QRXConversionUtility::binaryToNumber(std::string_view binary) {
    // KEPT: the sum passes through double precision after every bit, as stored values did.
    std::uint64_t number = 0;
    double weight = 1.0;
    for (auto bit = binary.rbegin(); bit != binary.rend(); ++bit, weight *= 2.0) {
        if (*bit != '0' && *bit != '1') return std::nullopt;
        if (*bit == '0') continue;
        const double sum = static_cast<double>(number) + weight;
        number = sum < kTwoToThe64 ? static_cast<std::uint64_t>(sum)
                                   : std::numeric_limits<std::uint64_t>::max();
    }
    return number;
}

std::string QRXConversionUtility::numberToBinary(std::int64_t number, std::int32_t minimumLength) {
    return answerOr(std::string{}, "numberToBinary", [&] {
        const std::int64_t length = minimumLength;
        std::string bits;
        for (auto rest = static_cast<std::uint64_t>(std::max<std::int64_t>(number, 0)); rest != 0;
             rest >>= 1U) {
            bits.insert(bits.begin(), (rest & 1U) != 0 ? '1' : '0');
        }
        const std::int64_t missing = length - static_cast<std::int64_t>(bits.size());
        if (missing > 0) bits.insert(0, static_cast<std::size_t>(missing), '0');
        return bits;
    });
}

std::string QRXConversionUtility::numberToBinary(std::int64_t number) {
    return numberToBinary(number, 1);
}

std::uint64_t QRXConversionUtility::dataToNumber(std::span<const std::byte> data) {
    return answerOr(std::uint64_t{0}, "dataToNumber", [&] {
        const auto bits = hexToBinary(dataToString(data));
        return bits ? binaryToNumber(*bits).value_or(0) : 0;
    });
}

std::string QRXConversionUtility::dataToString(std::span<const std::byte> data) {
    return answerOr(std::string{}, "dataToString", [&] {
        std::string hex;
        hex.reserve(data.size() * 2);
        for (const std::byte value : data) {
            hex += kHexDigits[std::to_integer<std::size_t>(value >> 4)];
            hex += kHexDigits[std::to_integer<std::size_t>(value & std::byte{0x0F})];
        }
        return hex;
    });
}

// ---- display texts

std::string QRXConversionUtility::secondsToHoursMinutesSeconds(double seconds) {
    return answerOr(std::string{}, "secondsToHoursMinutesSeconds", [&] {
        double rest = seconds;
        const std::int32_t hours = wholeMeasures(rest, kSecondsPerHour);
        const std::int32_t minutes = wholeMeasures(rest, kSecondsPerMinute);
        // KEPT: seconds are neither padded nor carried: 59.999 shows 60.00.
        return atLeastTwoDigits(hours) + ":" + atLeastTwoDigits(minutes) + ":" +
               fixedDecimals(rest, 2);
    });
}

double QRXConversionUtility::rawSizeToMB(std::int64_t bytes) {
    return static_cast<double>(bytes) / kBytesPerMegabyte;
}

double QRXConversionUtility::rawSizeToGB(std::int64_t bytes) {
    return static_cast<double>(bytes) / kBytesPerGigabyte;
}

}  // namespace qrx
