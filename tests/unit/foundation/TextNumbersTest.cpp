#include <clocale>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Text.h"

namespace qrx {
namespace {

constexpr std::int32_t kLargest32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallest32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kLargest64 = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest64 = std::numeric_limits<std::int64_t>::min();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <class Number>
struct NumberRow {
    const char* name;
    std::string text;
    Number value;
};

class Integer32 : public testing::TestWithParam<NumberRow<std::int32_t>> {};

TEST_P(Integer32, IsTheLeadingOne) {
    EXPECT_EQ(int32Value(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Table, Integer32,
                         testing::ValuesIn(std::vector<NumberRow<std::int32_t>>{
                             {"BlanksBeforeJunkAfter", "  42abc", 42},
                             {"LineEndsBefore", "\r\n\t 7", 7},
                             {"UnicodeBlankBefore",
                              "\u00A0\u2028"
                              "7",
                              7},
                             {"Plus", "+5", 5},
                             {"Minus", "-5", -5},
                             {"BlankAfterSign", "- 5", 0},
                             {"TwoSigns", "--5", 0},
                             {"Hexadecimal", "0x10", 0},
                             {"Exponent", "1e3", 1},
                             {"Point", "12.9", 12},
                             {"LeadingZeros", "0012", 12},
                             {"OtherScript", "٣", 0},
                             {"Empty", "", 0},
                             {"SignOnly", "-", 0},
                             {"Letters", "abc", 0},
                             {"Largest", "2147483647", kLargest32},
                             {"OneMoreClamps", "2147483648", kLargest32},
                             {"FarOutClamps", "99999999999", kLargest32},
                             {"HundredDigitsClamp", std::string(100, '9'), kLargest32},
                             {"Smallest", "-2147483648", kSmallest32},
                             {"OneLessClamps", "-2147483649", kSmallest32},
                             {"FarBelowClamps", "-99999999999999999999", kSmallest32},
                             {"NulStops",
                              std::string("1\0"
                                          "2",
                                          3),
                              1},
                             {"ByteThatIsNotUtf8Stops",
                              "1\xFF"
                              "2",
                              1},
                         }),
                         [](const auto& row) { return std::string(row.param.name); });

class Integer64 : public testing::TestWithParam<NumberRow<std::int64_t>> {};

TEST_P(Integer64, IsTheLeadingOne) {
    EXPECT_EQ(int64Value(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Table, Integer64,
                         testing::ValuesIn(std::vector<NumberRow<std::int64_t>>{
                             {"Largest", "9223372036854775807", kLargest64},
                             {"OneMoreClamps", "9223372036854775808", kLargest64},
                             {"Smallest", "-9223372036854775808", kSmallest64},
                             {"OneLessClamps", "-9223372036854775809", kSmallest64},
                             {"OtherScriptStops", "5٣", 5},
                             {"OtherScriptAlone", "٣٤", 0},
                             {"BlanksAndLineEnds", " \n-12 ", -12},
                             {"Empty", "", 0},
                         }),
                         [](const auto& row) { return std::string(row.param.name); });

class Double : public testing::TestWithParam<NumberRow<double>> {};

TEST_P(Double, IsTheLeadingOne) {
    EXPECT_EQ(doubleValue(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Table, Double,
                         testing::ValuesIn(std::vector<NumberRow<double>>{
                             {"Exponent", "1e3", 1000},
                             {"ExponentWithSign", "25E-1x", 2.5},
                             {"ExponentPlus", "1e+2", 100},
                             {"ExponentWithoutDigits", "1e", 1},
                             {"ExponentSignOnly", "1e+", 1},
                             {"NoWholePart", ".5", 0.5},
                             {"NoFraction", "5.", 5},
                             {"Comma", "1,5", 1},
                             {"Slash", "1/25", 1},
                             {"TooLarge", "1e400", kInfinity},
                             {"TooLargeWithoutExponent", std::string(400, '9'), kInfinity},
                             {"TooFarBelow", "-1e400", -kInfinity},
                             {"TooSmall", "1e-400", 0},
                             {"TooSmallWithoutExponent", "." + std::string(400, '0') + "1", 0},
                             {"HugeExponentOfNothing", "0e999999999999", 0},
                             {"HugeExponent", "1e99999999999999999999", kInfinity},
                             {"HugeNegativeExponent", "1e-99999999999999999999", 0},
                             {"Hexadecimal", "0x10", 0},
                             {"Infinity", "inf", 0},
                             {"InfinitySpelt", "infinity", 0},
                             {"NotANumber", "nan", 0},
                             {"Blanks", " \t29.97 fps", 29.97},
                             {"Plus", "+23.976", 23.976},
                             {"Minus", "-0.5", -0.5},
                             {"TwoSigns", "+-1", 0},
                             {"TwoPoints", "1.2.3", 1.2},
                             {"PointOnly", ".", 0},
                             {"PointAndExponent", ".e5", 0},
                             {"SignOnly", "-", 0},
                             {"Empty", "", 0},
                             {"Letters", "fps", 0},
                             {"OtherScript", "٣", 0},
                             {"ManyDigits", "0.1000000000000000055511151231257827", 0.1},
                         }),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Double, TextWithoutANumberIsPlainZero) {
    EXPECT_FALSE(std::signbit(doubleValue("-")));
    EXPECT_FALSE(std::signbit(doubleValue("-x")));
    EXPECT_TRUE(std::signbit(doubleValue("-0")));
}

class Boolean : public testing::TestWithParam<NumberRow<bool>> {};

TEST_P(Boolean, IsReadFromTheFirstTellingCharacter) {
    EXPECT_EQ(boolValue(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Table, Boolean,
                         testing::ValuesIn(std::vector<NumberRow<bool>>{
                             {"Zero", "0", false},
                             {"ZeroOne", "01", true},
                             {"ManyZeros", "000", false},
                             {"True", "true", true},
                             {"CapitalTrue", "TRUE", true},
                             {"Yes", "yes", true},
                             {"CapitalYes", "Y", true},
                             {"On", "on", false},
                             {"No", "no", false},
                             {"False", "false", false},
                             {"MinusOne", "-1", true},
                             {"PlusNine", "+9", true},
                             {"MinusZero", "-0", false},
                             {"BlanksBefore", " \t1", true},
                             {"SignThenYes", "-Y", true},
                             {"ZerosThenTrue", "00t", true},
                             {"ZeroPointFive", "0.5", false},
                             {"Empty", "", false},
                             {"SignOnly", "+", false},
                         }),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- numbers as text

TEST(FixedDecimals, RoundsTheExactBinaryValue) {
    EXPECT_EQ(fixedDecimals(.125, 2), "0.12");
    EXPECT_EQ(fixedDecimals(.375, 2), "0.38");
    EXPECT_EQ(fixedDecimals(29.965, 2), "29.96");
    EXPECT_EQ(fixedDecimals(23.975, 2), "23.98");
    EXPECT_EQ(fixedDecimals(23.976, 2), "23.98");
    EXPECT_EQ(fixedDecimals(2.5, 0), "2");
    EXPECT_EQ(fixedDecimals(3.5, 0), "4");
    EXPECT_EQ(fixedDecimals(0, 2), "0.00");
}

TEST(FixedDecimals, NegativeZeroKeepsItsSign) {
    EXPECT_EQ(fixedDecimals(-.001, 2), "-0.00");
    EXPECT_EQ(fixedDecimals(-0.0, 2), "-0.00");
    EXPECT_EQ(fixedDecimals(-0.4, 0), "-0");
}

TEST(FixedDecimals, LargeValuesAreWrittenOut) {
    EXPECT_EQ(fixedDecimals(1e300, 0).size(), 301U);
    EXPECT_EQ(fixedDecimals(1e300, 2).size(), 304U);
    EXPECT_EQ(fixedDecimals(-std::numeric_limits<double>::max(), 2).size(), 313U);
    EXPECT_EQ(fixedDecimals(1, 500).size(), 502U);
}

TEST(NumberText, HasSixteenSignificantDigits) {
    EXPECT_EQ(numberText(29.97), "29.97");
    EXPECT_EQ(numberText(23.976), "23.976");
    EXPECT_EQ(numberText(24.0), "24");
    EXPECT_EQ(numberText(0.0), "0");
    EXPECT_EQ(numberText(1e20), "1e+20");
    EXPECT_EQ(numberText(59.94), "59.94");
    EXPECT_EQ(numberText(1.0 / 3), "0.3333333333333333");
    EXPECT_EQ(numberText(1e-7), "1e-07");
}

TEST(NumberText, IntegersAreDecimal) {
    EXPECT_EQ(numberText(std::int64_t{0}), "0");
    EXPECT_EQ(numberText(kLargest64), "9223372036854775807");
    EXPECT_EQ(numberText(kSmallest64), "-9223372036854775808");
}

TEST(NumberText, DoesNotLookAtTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* const locale : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
        std::setlocale(LC_ALL, locale);  // where it is not installed nothing changes
        EXPECT_EQ(numberText(29.97), "29.97");
        EXPECT_EQ(fixedDecimals(29.97, 2), "29.97");
        EXPECT_EQ(doubleValue("29.97"), 29.97);
    }
    std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
}  // namespace qrx
