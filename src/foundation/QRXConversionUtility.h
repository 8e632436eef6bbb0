#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "foundation/QRXObject.h"

namespace qrx {

/// Conversions between bytes, hexadecimal text, binary digits, numbers, character codes and display
/// texts.
///
/// Hex text has two digits a byte, most significant byte first, no separators, lower case when made
/// here. Binary text is made of "0" and "1", most significant bit first. A character is a UTF-16
/// unit. No operation throws.
class QRXConversionUtility : public QRXObject {
public:
    /// A new instance.
    [[nodiscard]] static QRXConversionUtility conversionUtility();

    /// The decimal digits of `text`, of any script, read as one number as far as they are ASCII;
    /// 0 without any, held inside the 64-bit range.
    [[nodiscard]] static std::int64_t decimalValueForText(std::string_view text);

    // ---- texts and their codes

    /// Each unit in hexadecimal without padding: a line feed gives "a".
    [[nodiscard]] static std::string stringToHex(std::string_view text);
    /// Each pair of characters as the code of one character (Latin-1); a last odd one is left out.
    /// A pair is read as far as it is a hexadecimal number, sign and blank included: "4g" is 4.
    [[nodiscard]] static std::string stringFromHex(std::string_view hex);
    /// Each unit in decimal: "AB" gives "6566".
    [[nodiscard]] static std::string stringToAscii(std::string_view text);
    [[nodiscard]] static std::string textFromAsciiData(std::span<const std::byte> data);
    /// Each pair of hex digits as one character (Latin-1); code 0 and a pair that is not hex add
    /// nothing. A text of odd length comes back as it is.
    [[nodiscard]] static std::string textFromAsciiHexString(std::string_view hex);

    // ---- hexadecimal, binary, numbers

    /// "0123456789ABCDEFabcdef".
    [[nodiscard]] static std::string validHexCharacters();
    /// Four binary digits for each hex digit, leading zero digits left out ("00A" gives "1010").
    /// Nothing when any character is no hex digit.
    [[nodiscard]] static std::optional<std::string> hexToBinary(std::string_view hex);
    /// 0 of the empty text; nothing when any character is no binary digit. Summed in double
    /// precision, so the lowest bits of values above two to the power 53 can be lost; values above
    /// 64 bits give the largest number.
    [[nodiscard]] static std::optional<std::uint64_t> binaryToNumber(std::string_view binary);
    /// `minimumLength` binary digits or more; 0 and negative numbers are zeros only.
    [[nodiscard]] static std::string numberToBinary(std::int64_t number,
                                                    std::int32_t minimumLength);
    [[nodiscard]] static std::string numberToBinary(std::int64_t number);
    /// The bytes as one big-endian number, by `binaryToNumber`; 0 of none.
    [[nodiscard]] static std::uint64_t dataToNumber(std::span<const std::byte> data);
    [[nodiscard]] static std::string dataToString(std::span<const std::byte> data);

    // ---- display texts

    /// "HH:MM:S.ss": 3725.5 gives "01:02:5.50". The seconds are not padded, their rounding is not
    /// carried, and a negative number is all seconds.
    [[nodiscard]] static std::string secondsToHoursMinutesSeconds(double seconds);
    /// Decimal megabytes and gigabytes.
    [[nodiscard]] static double rawSizeToMB(std::int64_t bytes);
    [[nodiscard]] static double rawSizeToGB(std::int64_t bytes);
};

}  // namespace qrx
