#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/QRXConversionUtility.h"
#include "foundation/Text.h"

namespace qrx {
namespace {

using U = QRXConversionUtility;

std::vector<std::byte> bytes(std::initializer_list<int> values) {
    std::vector<std::byte> data;
    for (const int value : values) {
        data.push_back(static_cast<std::byte>(value));
    }
    return data;
}

TEST(ConversionUtility, EachCallGivesAnInstance) {
    EXPECT_EQ(U::conversionUtility().decimalValueForText("25"), 25);
}

// ---- decimalValueForText

struct DecimalCase {
    const char* name;
    std::string text;
    std::int64_t value;
};

class DecimalValue : public testing::TestWithParam<DecimalCase> {};

TEST_P(DecimalValue, IsReadFromTheDigitsAlone) {
    EXPECT_EQ(U::decimalValueForText(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(
    Table, DecimalValue,
    testing::Values(DecimalCase{"NumberAndUnit", "25 fps", 25}, DecimalCase{"NoDigits", "abc", 0},
                    DecimalCase{"Empty", "", 0}, DecimalCase{"DigitsAmongLetters", "a1b2c3", 123},
                    DecimalCase{"SignIsNoDigit", "-25", 25},
                    DecimalCase{"PointIsNoDigit", "29.97", 2997},
                    DecimalCase{"LeadingZeros", "007", 7}, DecimalCase{"OtherScriptAlone", "٣٤", 0},
                    DecimalCase{"OtherScriptStopsTheReading", "5٣7", 5},
                    DecimalCase{"AccentedLetterIsNoDigit", "2é5", 25},
                    DecimalCase{"DigitBeyondTheFirstPlaneStopsTheReading", "5\U0001D7D67", 5},
                    DecimalCase{"SuperscriptIsNoDecimalDigit", "5²7", 57},
                    DecimalCase{"Largest", "9223372036854775807", 9223372036854775807},
                    DecimalCase{"OutOfRangeClamps", "9223372036854775808", 9223372036854775807},
                    DecimalCase{"BytesThatAreNotUtf8",
                                "2\xFF\xFE"
                                "5",
                                25},
                    DecimalCase{"NulInside",
                                std::string("2\0"
                                            "5",
                                            3),
                                25}),
    [](const auto& row) { return std::string(row.param.name); });

// ---- texts and their codes

struct TextCase {
    const char* name;
    std::string text;
    std::string expected;
};

class StringToHex : public testing::TestWithParam<TextCase> {};

TEST_P(StringToHex, WritesEachUnitWithoutPadding) {
    EXPECT_EQ(U::stringToHex(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, StringToHex,
                         testing::Values(TextCase{"Empty", "", ""},
                                         TextCase{"Letters", "AB", "4142"},
                                         TextCase{"LineFeedIsOneDigit", "\n", "a"},
                                         TextCase{"AboveLatin1", "\u263A", "263a"},
                                         TextCase{"SurrogatePair", "\U0001F600", "d83dde00"},
                                         TextCase{"Nul", std::string(1, '\0'), "0"},
                                         TextCase{"Mixed", "a\té", "619e9"}),
                         [](const auto& row) { return std::string(row.param.name); });

class StringToAscii : public testing::TestWithParam<TextCase> {};

TEST_P(StringToAscii, WritesEachUnitInDecimal) {
    EXPECT_EQ(U::stringToAscii(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, StringToAscii,
                         testing::Values(TextCase{"Empty", "", ""},
                                         TextCase{"Letters", "AB", "6566"},
                                         TextCase{"LineFeed", "\n", "10"},
                                         TextCase{"SurrogatePair", "\U0001F600", "5535756832"}),
                         [](const auto& row) { return std::string(row.param.name); });

class StringFromHex : public testing::TestWithParam<TextCase> {};

TEST_P(StringFromHex, ReadsPairsAsCodes) {
    EXPECT_EQ(U::stringFromHex(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StringFromHex,
    testing::Values(TextCase{"Empty", "", ""}, TextCase{"OneCharacter", "4", ""},
                    TextCase{"Letters", "4142", "AB"}, TextCase{"OddLastIsIgnored", "41424", "AB"},
                    TextCase{"EitherCase", "4a4A", "JJ"},
                    TextCase{"StopsAtTheFirstOther", "4g", "\x04"},
                    TextCase{"NoDigitsGiveZero", "zz", std::string(1, '\0')},
                    TextCase{"SignIsRead", "+5", "\x05"}, TextCase{"BlankIsSkipped", " 7", "\x07"},
                    TextCase{"MinusOneIsTheHighestCode", "-1", "ÿ"},
                    TextCase{"PrefixWithoutDigits", "0x", std::string(1, '\0')},
                    TextCase{"AboveAsciiIsLatin1", "e9", "é"},
                    // U+0434 U+0431 cut to 34 31: "41"
                    TextCase{"CharactersAreCutToTheirLowByte", "\u0434\u0431", "A"},
                    TextCase{"LowByteZeroEndsThePair",
                             "\u0100"
                             "1",
                             std::string(1, '\0')}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(StringFromHex, RoundTripsPrintableAscii) {
    std::string text;
    for (char c = 0x20; c < 0x7F; ++c) {
        text += c;
    }
    EXPECT_EQ(U::stringFromHex(U::stringToHex(text)), text);
}

class TextFromAsciiHex : public testing::TestWithParam<TextCase> {};

TEST_P(TextFromAsciiHex, ReadsPairsAsCharacters) {
    EXPECT_EQ(U::textFromAsciiHexString(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, TextFromAsciiHex,
                         testing::Values(TextCase{"Empty", "", ""},
                                         TextCase{"Letters", "4142", "AB"},
                                         TextCase{"OddLengthIsUnchanged", "414", "414"},
                                         TextCase{"CodeZeroAddsNothing", "41004200", "AB"},
                                         TextCase{"PairThatIsNotHexAddsNothing", "41zz42", "AB"},
                                         TextCase{"HighCodesAreLatin1", "e980ff", "é\u0080ÿ"},
                                         TextCase{"LengthIsInUnits", "é1", ""},
                                         TextCase{"OddUnitsComeBack", "é12", "é12"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(TextFromAsciiHex, TwoByteCharactersLoseTheirZeroBytes) {
    EXPECT_EQ(U::textFromAsciiHexString("00430061006e006f006e"), "Canon");
}

TEST(TextFromAsciiHex, EveryCode) {
    for (int code = 1; code < 256; ++code) {
        SCOPED_TRACE(code);
        EXPECT_EQ(U::textFromAsciiData(bytes({code})), characterText(static_cast<char32_t>(code)));
    }
    EXPECT_EQ(U::textFromAsciiData(bytes({0})), "");
    EXPECT_EQ(U::textFromAsciiData({}), "");
}

// ---- hexadecimal, binary, numbers

TEST(HexToBinary, ValidCharacters) {
    EXPECT_EQ(U::validHexCharacters(), "0123456789ABCDEFabcdef");
}

struct BinaryCase {
    const char* name;
    std::string hex;
    std::optional<std::string> binary;
};

class HexToBinary : public testing::TestWithParam<BinaryCase> {};

TEST_P(HexToBinary, GivesFourDigitsForEach) {
    EXPECT_EQ(U::hexToBinary(GetParam().hex), GetParam().binary);
}

INSTANTIATE_TEST_SUITE_P(Table, HexToBinary,
                         testing::Values(BinaryCase{"Empty", "", ""},
                                         BinaryCase{"LoneZero", "0", ""},
                                         BinaryCase{"Zeros", "0000", ""},
                                         BinaryCase{"LeadingZerosAreDropped", "00A", "1010"},
                                         BinaryCase{"LaterZerosStay", "A0", "10100000"},
                                         BinaryCase{"OneKeepsItsZeros", "1", "0001"},
                                         BinaryCase{"Inner", "00FF", "11111111"},
                                         BinaryCase{"LowerCase", "ff", "11111111"},
                                         BinaryCase{"LetterBeyondF", "G1", std::nullopt},
                                         BinaryCase{"LetterBeyondFLowerCase", "1g", std::nullopt},
                                         BinaryCase{"Prefix", "0x1F", std::nullopt},
                                         BinaryCase{"Blank", "1 2", std::nullopt},
                                         BinaryCase{"BetweenDigitsAndLetters", "1:2", std::nullopt},
                                         BinaryCase{"BetweenUpperAndLower", "1_2", std::nullopt},
                                         BinaryCase{"DigitOfAnotherScript", "٣", std::nullopt},
                                         BinaryCase{"Nul", std::string("1\0", 2), std::nullopt}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(HexToBinary, EveryDigitInBothCases) {
    const std::string digits = "123456789ABCDEF";
    const std::vector<std::string> nibbles = {"0001", "0010", "0011", "0100", "0101",
                                              "0110", "0111", "1000", "1001", "1010",
                                              "1011", "1100", "1101", "1110", "1111"};
    for (std::size_t i = 0; i < digits.size(); ++i) {
        SCOPED_TRACE(digits[i]);
        EXPECT_EQ(U::hexToBinary(digits.substr(i, 1)), nibbles[i]);
        EXPECT_EQ(U::hexToBinary(lowerCased(digits.substr(i, 1))), nibbles[i]);
    }
}

struct NumberCase {
    const char* name;
    std::string binary;
    std::optional<std::uint64_t> number;
};

class BinaryToNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(BinaryToNumber, AddsPowersOfTwo) {
    EXPECT_EQ(U::binaryToNumber(GetParam().binary), GetParam().number);
}

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

INSTANTIATE_TEST_SUITE_P(
    Table, BinaryToNumber,
    testing::Values(NumberCase{"Empty", "", 0}, NumberCase{"Zero", "0", 0},
                    NumberCase{"One", "1", 1}, NumberCase{"LeadingZeros", "0011", 3},
                    NumberCase{"OtherDigit", "102", std::nullopt},
                    NumberCase{"OtherCharacterFirst", "x01", std::nullopt},
                    NumberCase{"Bit63", "1" + std::string(63, '0'), std::uint64_t{1} << 63U},
                    NumberCase{"Bit64IsHeldAtTheLargest", "1" + std::string(64, '0'), kLargest},
                    NumberCase{"SixtyFourOnes", std::string(64, '1'), kLargest},
                    NumberCase{"TwoThousandOnes", std::string(2000, '1'), kLargest},
                    NumberCase{"TwoThousandZerosAfterAOne", "1" + std::string(2000, '0'),
                               kLargest}),
    [](const auto& row) { return std::string(row.param.name); });

struct DigitsCase {
    const char* name;
    std::int64_t number;
    std::int32_t length;
    std::string expected;
};

class NumberToBinary : public testing::TestWithParam<DigitsCase> {};

TEST_P(NumberToBinary, HasAtLeastTheLength) {
    EXPECT_EQ(U::numberToBinary(GetParam().number, GetParam().length), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, NumberToBinary,
    testing::Values(DigitsCase{"ThreeInOne", 3, 1, "11"}, DigitsCase{"ThreeInFour", 3, 4, "0011"},
                    DigitsCase{"ThreeInThree", 3, 3, "011"}, DigitsCase{"FourInThree", 4, 3, "100"},
                    DigitsCase{"ZeroInFour", 0, 4, "0000"}, DigitsCase{"ZeroInOne", 0, 1, "0"},
                    DigitsCase{"ZeroInNone", 0, 0, ""}, DigitsCase{"FiveInNone", 5, 0, "101"},
                    DigitsCase{"NegativeLength", 5, -3, "101"},
                    DigitsCase{"LowestLength", 5, std::numeric_limits<std::int32_t>::min(), "101"},
                    DigitsCase{"NegativeNumberIsZeros", -1, 4, "0000"},
                    DigitsCase{"LowestNumber", std::numeric_limits<std::int64_t>::min(), 1, "0"},
                    DigitsCase{"HighestNumber", std::numeric_limits<std::int64_t>::max(), 1,
                               std::string(63, '1')},
                    DigitsCase{"PowerOfTwo", std::int64_t{1} << 62U, 1,
                               "1" + std::string(62, '0')}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(NumberToBinary, RoundTripsThroughBinaryToNumber) {
    for (std::int64_t number = 0; number < 5000; ++number) {
        SCOPED_TRACE(number);
        EXPECT_EQ(U::binaryToNumber(U::numberToBinary(number)), static_cast<std::uint64_t>(number));
        EXPECT_EQ(U::binaryToNumber(U::numberToBinary(number, 16)),
                  static_cast<std::uint64_t>(number));
    }
}

TEST(DataToNumber, IsBigEndian) {
    EXPECT_EQ(U::dataToNumber(bytes({0, 0, 0, 0x19})), 25U);
    EXPECT_EQ(U::dataToNumber(bytes({1, 0})), 256U);
    EXPECT_EQ(U::dataToNumber({}), 0U);
    EXPECT_EQ(U::dataToNumber(bytes({0, 0, 0, 0})), 0U);
    EXPECT_EQ(U::dataToNumber(bytes({0x80, 0, 0, 0, 0, 0, 0, 0})), std::uint64_t{1} << 63U);
}

TEST(DataToNumber, IsExactUpToTwoToThe53) {
    EXPECT_EQ(U::dataToNumber(bytes({0, 0x1F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF})),
              9007199254740991U);
    EXPECT_EQ(U::dataToNumber(bytes({0, 0x20, 0, 0, 0, 0, 0, 0})), 9007199254740992U);
}

TEST(DataToNumber, KeptLowestBitsAreLostAboveTwoToThe53) {
    EXPECT_EQ(U::dataToNumber(bytes({0, 0x20, 0, 0, 0, 0, 0, 0x01})), 9007199254740992U);
    EXPECT_EQ(U::dataToNumber(bytes({0, 0x20, 0, 0, 0, 0, 0, 0x03})), 9007199254740996U);
}

TEST(DataToNumber, MoreThanSixtyFourBitsGiveTheLargestNumber) {
    EXPECT_EQ(U::dataToNumber(std::vector<std::byte>(8, std::byte{0xFF})), kLargest);
    EXPECT_EQ(U::dataToNumber(std::vector<std::byte>(32, std::byte{0xFF})), kLargest);
}

TEST(DataToString, IsLowerCaseHexInFileOrder) {
    EXPECT_EQ(U::dataToString(bytes({0x0A, 0xFF})), "0aff");
    EXPECT_EQ(U::dataToString(bytes({0x0A, 0x0B, 0x0C, 0x0D, 0x0E})), "0a0b0c0d0e");
    EXPECT_EQ(U::dataToString({}), "");
}

// ---- display texts

struct SecondsCase {
    const char* name;
    double seconds;
    std::string expected;
};

class SecondsText : public testing::TestWithParam<SecondsCase> {};

TEST_P(SecondsText, ShowsHoursMinutesAndSeconds) {
    EXPECT_EQ(U::secondsToHoursMinutesSeconds(GetParam().seconds), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SecondsText,
    testing::Values(SecondsCase{"Zero", 0.0, "00:00:0.00"},
                    SecondsCase{"Mixed", 3725.5, "01:02:5.50"},
                    SecondsCase{"OneMinute", 60.0, "00:01:0.00"},
                    SecondsCase{"OneHour", 3600.0, "01:00:0.00"},
                    SecondsCase{"TenHours", 36000.0, "10:00:0.00"},
                    SecondsCase{"NineIsPadded", 9 * 3600.0 + 9 * 60.0, "09:09:0.00"},
                    SecondsCase{"HundredHours", 360000.0, "100:00:0.00"},
                    SecondsCase{"JustBelowAnHour", std::nextafter(3600.0, 0.0), "00:59:60.00"},
                    SecondsCase{"JustBelowAMinute", std::nextafter(60.0, 0.0), "00:00:60.00"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(SecondsText, KeptRoundingIsNotCarried) {
    EXPECT_EQ(U::secondsToHoursMinutesSeconds(59.999), "00:00:60.00");
    EXPECT_EQ(U::secondsToHoursMinutesSeconds(35999.999), "09:59:60.00");
}

TEST(SecondsText, KeptNegativeNumbersAreAllSeconds) {
    EXPECT_EQ(U::secondsToHoursMinutesSeconds(-5.25), "00:00:-5.25");
    EXPECT_EQ(U::secondsToHoursMinutesSeconds(-7200.0), "00:00:-7200.00");
}

/// The rule as it is told: steps of `measure` until the total is above what is left.
std::int32_t counted(double& rest, double measure) {
    double total = 0;
    std::int32_t count = -1;
    do {
        total += measure;
        ++count;
    } while (!(total > rest));
    rest -= count * measure;
    return count;
}

TEST(SecondsText, AgreesWithCountingStepByStep) {
    for (const double base : {0.0, 59.0, 60.0, 3599.0, 3600.0, 86400.0, 359999.0, 1e7}) {
        for (int i = -400; i < 400; ++i) {
            const double seconds = base + i * 0.125;
            SCOPED_TRACE(seconds);
            double rest = seconds;
            const std::int32_t hours = counted(rest, 3600.0);
            const std::int32_t minutes = counted(rest, 60.0);
            const auto two = [](std::int32_t n) { return (n > 9 ? "" : "0") + std::to_string(n); };
            EXPECT_EQ(U::secondsToHoursMinutesSeconds(seconds),
                      two(hours) + ":" + two(minutes) + ":" + fixedDecimals(rest, 2));
        }
    }
}

TEST(SecondsText, NumbersOutOfAllProportionEnd) {
    EXPECT_FALSE(U::secondsToHoursMinutesSeconds(1e300).empty());
    EXPECT_FALSE(U::secondsToHoursMinutesSeconds(std::numeric_limits<double>::infinity()).empty());
    EXPECT_EQ(U::secondsToHoursMinutesSeconds(std::numeric_limits<double>::quiet_NaN()),
              "00:00:nan");
}

TEST(RawSize, IsDecimal) {
    EXPECT_DOUBLE_EQ(U::rawSizeToMB(1500000), 1.5);
    EXPECT_DOUBLE_EQ(U::rawSizeToGB(2000000000), 2.0);
    EXPECT_DOUBLE_EQ(U::rawSizeToMB(0), 0.0);
    EXPECT_DOUBLE_EQ(U::rawSizeToGB(-500000000), -0.5);
    EXPECT_DOUBLE_EQ(U::rawSizeToGB(std::numeric_limits<std::int64_t>::max()),
                     9223372036.854775807);
}

}  // namespace
}  // namespace qrx
