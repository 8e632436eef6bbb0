#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "timecode/QRXTimecodeUtility.h"

namespace qrx {
namespace {

using U = QRXTimecodeUtility;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

TEST(FreshTimecodes, HaveTheirSeparator) {
    EXPECT_EQ(U::defaultTimecode(), "00:00:00:00");
    EXPECT_EQ(U::freshNonDropFrameTimecode(), "00:00:00:00");
    EXPECT_EQ(U::freshDropFrameTimecode(), "00:00:00;00");
}

// ---- form

struct FormCase {
    const char* name;
    std::string text;
    bool valid;
};

class TimecodeForm : public testing::TestWithParam<FormCase> {};

TEST_P(TimecodeForm, DecidesValidity) {
    EXPECT_EQ(U::timecodeIsValid(GetParam().text), GetParam().valid);
    EXPECT_EQ(U::isValidTimeCode(GetParam().text), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(
    Table, TimecodeForm,
    testing::Values(FormCase{"NonDrop", "01:02:03:04", true}, FormCase{"Drop", "00:00:00;00", true},
                    FormCase{"NoRange", "99:99:99:99", true},
                    FormCase{"FramesBeyondTheRate", "12:34:56:78", true},
                    FormCase{"SemicolonAfterHours", "00;00:00:00", false},
                    FormCase{"SemicolonAfterMinutes", "00:00;00:00", false},
                    FormCase{"TooShort", "0:00:00:00", false},
                    FormCase{"TooLong", "00:00:00:000", false}, FormCase{"Empty", "", false},
                    FormCase{"Letter", "0a:00:00:00", false},
                    FormCase{"Blank", " 0:00:00:00", false}, FormCase{"Sign", "-1:00:00:00", false},
                    FormCase{"Point", "00:00:00.00", false},
                    FormCase{"DigitOfAnotherScript", "0٣:00:00:00", false},
                    FormCase{"ElevenBytesWithAnAccent", "é:00:00:00", false},
                    FormCase{"Nul", std::string("00:00:00:0\0", 11), false}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(TimecodeForm, EveryCharacterMatters) {
    const std::string good = "12:34:56:78";
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (const char other : {'x', ' ', ';', ':', '0', '/', '\0'}) {
            std::string text = good;
            text[i] = other;
            const bool isSeparator = i == 2 || i == 5 || i == 8;
            const bool expected =
                isSeparator ? other == ':' || (i == 8 && other == ';') : other == '0';
            EXPECT_EQ(U::timecodeIsValid(text), expected) << text;
        }
        EXPECT_FALSE(U::timecodeIsValid(good.substr(0, i))) << i;
    }
}

// ---- drop-frame notation

TEST(DropFrameNotation, IsCharacterEightOfAValidTimecode) {
    EXPECT_TRUE(U::timecodeHasDropFrameIndicator("00:00:00;00"));
    EXPECT_FALSE(U::timecodeHasDropFrameIndicator("00:00:00:00"));
    EXPECT_FALSE(U::timecodeHasDropFrameIndicator("xx:xx:xx;xx"));
    EXPECT_FALSE(U::timecodeHasDropFrameIndicator("00:00:00;"));
    EXPECT_FALSE(U::timecodeHasDropFrameIndicator(""));
}

TEST(DropFrameNotation, IsSeenInAnyTextThatIsLongEnough) {
    EXPECT_TRUE(U::timecodeIsDropFrame("00:00:00;00"));
    EXPECT_FALSE(U::timecodeIsDropFrame("00:00:00:00"));
    EXPECT_TRUE(U::timecodeIsDropFrame("xxxxxxxx;"));
    EXPECT_TRUE(U::timecodeIsDropFrame("éééééééé;"));
    EXPECT_FALSE(U::timecodeIsDropFrame("éééé;"));  // 4 two-byte characters: byte 8 is the ";"
    EXPECT_FALSE(U::timecodeIsDropFrame("00:00:00"));
    EXPECT_FALSE(U::timecodeIsDropFrame(""));
}

TEST(DropFrameNotation, IsForcedOnValidTimecodes) {
    const auto expectForced = [](std::string_view text, bool drop, std::string_view expected) {
        EXPECT_EQ(U::forceTimecodeToMatchDropFrameFormat(text, drop), expected);
        EXPECT_EQ(U::augmentTimecodeDropFrame(text, drop), expected);
    };
    expectForced("01:02:03:04", true, "01:02:03;04");
    expectForced("01:02:03;04", true, "01:02:03;04");
    expectForced("01:02:03;04", false, "01:02:03:04");
    expectForced("01:02:03:04", false, "01:02:03:04");
    expectForced("01:02:03", true, "01:02:03");
    expectForced("xx:xx:xx:xx", true, "xx:xx:xx:xx");
    expectForced("", true, "");
}

// ---- reversal

TEST(ReverseTimecode, ReadsFramesFirst) {
    EXPECT_EQ(U::reverseTimecodeString("04030201"), "01:02:03:04");
    EXPECT_EQ(U::reverseTimecodeString("01:02:03:04"), "04:03:02:01");
    EXPECT_EQ(U::reverseTimecodeString("0:4:0:3:0:2:0:1"), "01:02:03:04");
}

TEST(ReverseTimecode, KeptSemicolonLandsAfterTheFirstField) {
    EXPECT_EQ(U::reverseTimecodeString("01:02:03;04"), "04;03:02:01");
    EXPECT_EQ(U::reverseTimecodeString("0403;0201"), "01;02:03:04");
    EXPECT_FALSE(U::timecodeIsValid(U::reverseTimecodeString("01:02:03;04").value()));
}

TEST(ReverseTimecode, NeedsEightOtherCharacters) {
    EXPECT_EQ(U::reverseTimecodeString("1234567"), std::nullopt);
    EXPECT_EQ(U::reverseTimecodeString("123456789"), std::nullopt);
    EXPECT_EQ(U::reverseTimecodeString(""), std::nullopt);
    EXPECT_EQ(U::reverseTimecodeString(":;:;"), std::nullopt);
    EXPECT_EQ(U::reverseTimecodeString("abcdefgh"), "gh:ef:cd:ab");
    EXPECT_EQ(U::reverseTimecodeString("éa345678"), "78:56:34:éa");
}

TEST(ReverseTimecode, TwiceGivesTheTimecodeBack) {
    for (const std::string text : {"01:02:03:04", "23:59:59:29", "00:00:00:00"}) {
        EXPECT_EQ(U::reverseTimecodeString(U::reverseTimecodeString(text).value()), text);
    }
}

// ---- segments

TEST(Segments, ArePaddedUpToNine) {
    const auto expectSegment = [](std::int32_t number, std::string_view expected) {
        EXPECT_EQ(U::timecodeSegmentFromInteger(number), expected);
        EXPECT_EQ(U::formatTimeCodeSegmentFromInteger(number), expected);
    };
    expectSegment(0, "00");
    expectSegment(7, "07");
    expectSegment(9, "09");
    expectSegment(10, "10");
    expectSegment(100, "100");
    expectSegment(123, "123");
    expectSegment(kHighest, "2147483647");
}

TEST(Segments, KeptNegativeNumbersGetAZeroInFront) {
    EXPECT_EQ(U::timecodeSegmentFromInteger(-3), "0-3");
    EXPECT_EQ(U::timecodeSegmentFromInteger(-30), "0-30");
    EXPECT_EQ(U::formatTimeCodeSegmentFromInteger(kLowest), "0-2147483648");
}

TEST(TimecodeFromHours, JoinsSegments) {
    EXPECT_EQ(U::timecodeFromHours(1, 2, 3, 4, false), "01:02:03:04");
    EXPECT_EQ(U::timecodeFromHours(1, 2, 3, 4, true), "01:02:03;04");
    EXPECT_EQ(U::timecodeFromHours(100, 60, -1, 0, true), "100:60:0-1;00");
}

// ---- dates

/// The local zone for the length of a test.
class Zone {
public:
    explicit Zone(const char* name) {
        const char* const before = std::getenv("TZ");
        had_ = before != nullptr;
        if (had_) before_ = before;
        ::setenv("TZ", name, 1);
        ::tzset();
    }
    ~Zone() {
        had_ ? ::setenv("TZ", before_.c_str(), 1) : ::unsetenv("TZ");
        ::tzset();
    }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;

private:
    bool had_ = false;
    std::string before_;
};

TEST(DateToTimecode, IsTheTimeOfDay) {
    const Zone zone("UTC0");
    EXPECT_EQ(U::dateToTimecode(1299333729), "14:02:09:00");
    EXPECT_EQ(U::timecodeFromDate(1299333729), "14:02:09:00");
    EXPECT_EQ(U::dateToTimecode(0), "00:00:00:00");
    EXPECT_EQ(U::dateToTimecode(86399), "23:59:59:00");
    EXPECT_EQ(U::dateToTimecode(-1), "23:59:59:00");
}

TEST(DateToTimecode, IsInTheLocalZone) {
    const Zone zone("XYZ-05:30");  // east of Greenwich
    EXPECT_EQ(U::dateToTimecode(1299333729), "19:32:09:00");
}

TEST(DateToTimecode, IsTheDefaultWithoutADate) {
    EXPECT_EQ(U::dateToTimecode(std::nullopt), "00:00:00:00");
    EXPECT_EQ(U::timecodeFromDate(std::nullopt), "00:00:00:00");
    EXPECT_EQ(U::dateToTimecode(std::numeric_limits<std::int64_t>::max()), "00:00:00:00");
    EXPECT_EQ(U::dateToTimecode(std::numeric_limits<std::int64_t>::min()), "00:00:00:00");
}

}  // namespace
}  // namespace qrx
