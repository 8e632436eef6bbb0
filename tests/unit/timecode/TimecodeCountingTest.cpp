#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "timecode/QRXTimecodeUtility.h"

namespace qrx {
namespace {

using U = QRXTimecodeUtility;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

QRXVideoFrameRate rate(std::uint64_t number) {
    return static_cast<QRXVideoFrameRate>(number);
}

// ---- the running timecode

TEST(RunningTimecode, StartsAtZeroAtThirtyByDefault) {
    for (const U& utility : {U(), U::timecodeUtility()}) {
        EXPECT_EQ(utility.framesPerSecond(), 30.0F);
        EXPECT_EQ(utility.frameOffset(), 0);
        EXPECT_FALSE(utility.isDropFrame());
        EXPECT_EQ(utility.startTimecode(), "00:00:00:00");
    }
}

TEST(RunningTimecode, DerivesOffsetAndDropFrame) {
    const U drop(29.97F, "01:00:00;00");
    EXPECT_TRUE(drop.isDropFrame());
    EXPECT_EQ(drop.frameOffset(), 107784);
    EXPECT_EQ(drop.startTimecode(), "01:00:00;00");

    const U pal(25.0F, "01:00:00:00");
    EXPECT_FALSE(pal.isDropFrame());
    EXPECT_EQ(pal.frameOffset(), 90000);

    const U invalid(25.0F, "1:00");
    EXPECT_EQ(invalid.frameOffset(), 0);
    EXPECT_EQ(invalid.startTimecode(), "1:00");

    const U unknown(15.0F, "00:00:01:05");
    EXPECT_EQ(unknown.frameOffset(), 5);  // rate 0: only the frames field counts
}

TEST(RunningTimecode, KeptFramesFieldIsTheArgument) {
    EXPECT_EQ(U(29.97F, "01:00:00;00").timecodeAtFrame(30), "00:59:59;30");
    EXPECT_EQ(U().timecodeAtFrame(95), "00:00:03:95");
    EXPECT_EQ(U().timecodeAtFrame(100000), "00:55:33:100000");
}

TEST(RunningTimecode, KeptFiftyCountsAt59_94) {
    const U utility(50.0F, "00:00:01:00");
    EXPECT_EQ(utility.frameOffset(), 59);
    EXPECT_EQ(utility.timecodeAtFrame(60), "00:00:02:60");
}

TEST(RunningTimecode, SettersChangeTheirOwnValueAlone) {
    U utility;
    utility.setFramesPerSecond(25.0F);
    utility.setFrameOffset(25);
    utility.setIsDropFrame(true);
    utility.setStartTimecode("10:00:00:00");
    EXPECT_EQ(utility.framesPerSecond(), 25.0F);
    EXPECT_EQ(utility.frameOffset(), 25);
    EXPECT_EQ(utility.startTimecode(), "10:00:00:00");
    EXPECT_EQ(utility.timecodeAtFrame(0), "00:00:01;00");
}

TEST(RunningTimecode, NegativeFrames) {
    EXPECT_EQ(U().timecodeAtFrame(-1800), "00:0-1:00:0-1800");
}

TEST(RunningTimecode, HostileNumbersAreAnswered) {
    U utility(29.97F, "99:59:59;29");
    EXPECT_FALSE(utility.timecodeAtFrame(kHighest).empty());
    EXPECT_FALSE(utility.timecodeAtFrame(kLowest).empty());
    for (const float hostile : {0.0F, 1e-30F, 1e30F, std::numeric_limits<float>::infinity(),
                                std::numeric_limits<float>::quiet_NaN()}) {
        SCOPED_TRACE(hostile);
        const U odd(hostile, "00:00:01:05");
        EXPECT_FALSE(odd.isDropFrame());
        EXPECT_EQ(odd.timecodeAtFrame(10).size(), 11U);
        EXPECT_FALSE(odd.timecodeAtFrame(kLowest).empty());
    }
    EXPECT_EQ(U(0.0F, "00:00:00:00").timecodeAtFrame(10), "00:00:00:10");
    EXPECT_EQ(U(-1.0F, "00:00:01:05").timecodeAtFrame(10), "00:00:0-15:10");
}

// ---- frames to timecode by rate

struct FramesCase {
    const char* name;
    std::int32_t frames;
    std::uint64_t rate;
    QRXViewType view;
    std::string expected;
};

class FramesToTimecode : public testing::TestWithParam<FramesCase> {};

TEST_P(FramesToTimecode, DividesByTheRate) {
    const FramesCase& row = GetParam();
    EXPECT_EQ(U::timecodeFromFrames(row.frames, rate(row.rate), row.view), row.expected);
}

constexpr QRXViewType kFields = QRXViewTypeStandard;
constexpr QRXViewType kFrames = QRXViewTypeFrame;

INSTANTIATE_TEST_SUITE_P(
    Table, FramesToTimecode,
    testing::Values(FramesCase{"OneSecondOf29_97Is29Frames", 30, 5, kFields, "00:00:01;01"},
                    FramesCase{"HourOf29_97IsSinglePrecision", 107892, 5, kFields, "01:00:00;00"},
                    FramesCase{"MinuteOf29_97", 1798, 5, kFields, "00:01:00;00"},
                    FramesCase{"BeforeTheMinuteOf29_97", 1797, 5, kFields, "00:00:61;28"},
                    FramesCase{"HourOf24", 86400, 0, kFields, "01:00:00:00"},
                    FramesCase{"BeforeTheHourOf24", 86399, 0, kFields, "00:59:59:23"},
                    FramesCase{"HourOf23_976", 86313, 1, kFields, "01:00:00;00"},
                    FramesCase{"MinuteOf23_976", 1438, 1, kFields, "00:01:00;00"},
                    FramesCase{"SecondOf23_976", 23, 1, kFields, "00:00:01;00"},
                    FramesCase{"HourOfPAL", 90000, 2, kFields, "01:00:00:00"},
                    FramesCase{"HourOf25", 90000, 3, kFields, "01:00:00:00"},
                    FramesCase{"HourOf50iInFields", 215784, 4, kFields, "01:00:00:00"},
                    FramesCase{"HourOf50iInFrames", 90000, 4, kFrames, "01:00:00:00"},
                    FramesCase{"HourOf30", 108000, 6, kFields, "01:00:00:00"},
                    FramesCase{"HourOf59_94InFields", 215784, 7, kFields, "01:00:00;00"},
                    FramesCase{"MinuteOf59_94InFields", 3596, 7, kFields, "00:01:00;00"},
                    FramesCase{"SecondOf59_94InFields", 59, 7, kFields, "00:00:01;00"},
                    FramesCase{"HourOf59_94InFrames", 107892, 7, kFrames, "01:00:00;00"},
                    FramesCase{"HourOf60", 216000, 9, kFields, "01:00:00:00"},
                    FramesCase{"MinuteOf60", 3600, 9, kFields, "00:01:00:00"},
                    FramesCase{"ManyHours", 30 * 3600 * 123, 6, kFields, "123:00:00:00"},
                    FramesCase{"ZeroDrop", 0, 5, kFields, "00:00:00;00"},
                    FramesCase{"ZeroNonDrop", 0, 6, kFields, "00:00:00:00"},
                    FramesCase{"NegativeDrop", -5, 7, kFields, "00:00:00;00"},
                    FramesCase{"LowestNonDrop", kLowest, 3, kFields, "00:00:00:00"},
                    FramesCase{"UndefinedRate", 100, 10, kFields, "00:00:00:00"},
                    FramesCase{"UnknownRate", 100, 11, kFields, "00:00:00:00"},
                    FramesCase{"HighestCount", kHighest, 6, kFields, "19884:06:28:07"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(FramesToTimecode, KeptDropFrameChangesTheSeparatorAlone) {
    // true drop frame has no labels 00:01:00;00 and 00:01:00;01
    EXPECT_EQ(U::timecodeFromFrames(1798, QRXVideoFrameRate29_97, kFields), "00:01:00;00");
    EXPECT_EQ(U::timecodeFromFrames(1799, QRXVideoFrameRate29_97, kFields), "00:01:00;01");
}

TEST(FramesToTimecode, RoundTripsAtWholeRates) {
    for (const std::uint64_t number : {0U, 2U, 3U, 6U, 9U}) {
        for (std::int32_t frames = 1; frames < 24 * 216000; frames += frames < 5000 ? 1 : 977) {
            const std::string timecode = U::timecodeFromFrames(frames, rate(number), kFields);
            ASSERT_EQ(U::framesRepresentedByTimecode(timecode, rate(number)), frames)
                << timecode << " at " << number;
            ASSERT_TRUE(U::timecodeIsValid(timecode) || frames >= 100 * 86400) << timecode;
        }
    }
}

// ---- frames to timecode by number

TEST(FramesToTimecodeByNumber, DividesByTheFractionalRate) {
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(1798, 29.97, true), "00:00:59;29");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(1799, 29.97, true), "00:01:00;00");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(90000, 25.0, false), "01:00:00:00");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(90000, 25.0, true), "01:00:00;00");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(0, 24.0, false), "00:00:00:00");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(0, 24.0, true), "00:00:00;00");
}

TEST(FramesToTimecodeByNumber, KeptRateIsMovedByTheFlag) {
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(107892, 29.97, false), "00:59:56:12");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(108000, 30.0, false), "01:00:00:00");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(107892, 30.0, true), "01:00:00;00");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(86400, 23.976, false), "01:00:00:00");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(60, 59.94, false), "00:00:01:00");
    // 50 counts at 59.94
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(60, 50.0, false), "00:00:01:00");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(59, 50.0, false), "00:00:00:59");
}

TEST(FramesToTimecodeByNumber, NothingForAnUnusualRate) {
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(100, 15.0, false), std::nullopt);
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(100, 0.0, false), std::nullopt);
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(0, -30.0, true), std::nullopt);
}

TEST(FramesToTimecodeByNumber, CountsAboveTheSignedRangeAreNegative) {
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(0xFFFFFFFF, 30.0, false), "00:00:00:0-1");
    EXPECT_EQ(U::timecodeFromFramesWithFrameRate(0x80000000, 30.0, false), "00:00:00:0-2147483648");
}

// ---- frames to timecode by whole rate

struct CreateCase {
    const char* name;
    std::int32_t frames;
    std::int32_t rate;
    bool drop;
    std::string expected;
};

class CreateTimecode : public testing::TestWithParam<CreateCase> {};

TEST_P(CreateTimecode, DividesByTheWholeRate) {
    const CreateCase& row = GetParam();
    EXPECT_EQ(U::createTimecodeFromFrames(row.frames, row.rate, row.drop), row.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, CreateTimecode,
    testing::Values(CreateCase{"MinuteWithDrop", 1800, 30, true, "00:01:00;02"},
                    CreateCase{"AfterTheMinuteWithDrop", 1801, 30, true, "00:01:00;01"},
                    CreateCase{"MinuteWithoutDrop", 1800, 30, false, "00:01:00:00"},
                    CreateCase{"TenthMinuteWithDrop", 18000, 30, true, "00:10:00;00"},
                    CreateCase{"EleventhMinuteWithDrop", 19800, 30, true, "00:11:00;02"},
                    CreateCase{"HourWithDrop", 108000, 30, true, "01:00:00;00"},
                    CreateCase{"HourAndMinuteWithDrop", 109800, 30, true, "01:01:00;02"},
                    CreateCase{"SecondWithDrop", 30, 30, true, "00:00:01;00"},
                    CreateCase{"ZeroWithDrop", 0, 30, true, "00:00:00;00"},
                    CreateCase{"ZeroWithoutDrop", 0, 30, false, "00:00:00:00"},
                    CreateCase{"Negative", -1800, 30, false, "00:0-1:00:00"},
                    CreateCase{"NegativeWithDrop", -1800, 30, true, "00:0-1:00;00"},
                    CreateCase{"ZeroRate", 100, 0, false, "00:00:00:00"},
                    CreateCase{"ZeroRateWithDrop", 100, 0, true, "00:00:00;00"},
                    CreateCase{"RateOfOne", 3661, 1, false, "01:01:01:00"},
                    CreateCase{"HugeRate", 100, kHighest, false, "00:00:00:100"},
                    CreateCase{"LowestByMinusOne", kLowest, -1, false, "596523:14:08:00"},
                    CreateCase{"LowestRate", kLowest, kLowest, false, "00:00:01:00"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(CreateTimecode, KeptOneLabelOfAMinuteIsMovedNotTwoPassedOver) {
    EXPECT_EQ(U::createTimecodeFromFrames(1800, 30, true), "00:01:00;02");
    EXPECT_EQ(U::createTimecodeFromFrames(1801, 30, true), "00:01:00;01");
    EXPECT_EQ(U::createTimecodeFromFrames(1802, 30, true), "00:01:00;02");
}

// ---- stepping and rescaling

TEST(IncrementTimecode, StepsInBothDirections) {
    EXPECT_EQ(U::incrementTimecode("00:00:00:00", 1, 25), "00:00:00:01");
    EXPECT_EQ(U::incrementTimecode("00:59:59:24", 1, 25), "01:00:00:00");
    EXPECT_EQ(U::incrementTimecode("01:00:00:00", -1, 25), "00:59:59:24");
    EXPECT_EQ(U::incrementTimecode("00:00:59;29", 1, 30), "00:01:00;02");
    EXPECT_EQ(U::incrementTimecode("00:00:01:00", -25, 25), "00:00:00:00");
}

TEST(IncrementTimecode, KeptSteppingBackOverAMovedLabelStaysThere) {
    EXPECT_EQ(U::incrementTimecode("00:01:00;02", -2, 30), "00:01:00;02");
}

TEST(IncrementTimecode, ReadsFieldsByPositionAlone) {
    EXPECT_EQ(U::incrementTimecode("00-00-01x10", 1, 30), "00:00:01:11");
    EXPECT_EQ(U::incrementTimecode("short", 5, 30), "00:00:00:05");
    EXPECT_EQ(U::incrementTimecode("", 5, 30), "00:00:00:05");
}

TEST(IncrementTimecode, HostileNumbersAreAnswered) {
    EXPECT_EQ(U::incrementTimecode("99:59:59:29", kHighest, 30), "19884:06:28:07");
    EXPECT_FALSE(U::incrementTimecode("00:00:00:00", kLowest, 30).empty());
    EXPECT_EQ(U::incrementTimecode("01:00:00:05", 1, 0), "00:00:00:00");
    EXPECT_FALSE(U::incrementTimecode("99:59:59:29", 1, kHighest).empty());
    EXPECT_FALSE(U::incrementTimecode("99:59:59:29", 1, kLowest).empty());
}

TEST(AdjustTimecode, RescalesTheFramesField) {
    EXPECT_EQ(U::adjustTimecode("01:00:00:24", 105, 103), "01:00:00:11");
    EXPECT_EQ(U::adjustTimecode("01:02:03;29", 100, 104), "01:02:03;58");
    EXPECT_EQ(U::adjustTimecode("01:02:03:24", 102, 103), "01:02:03:23");
    EXPECT_EQ(U::adjustTimecode("00:00:00:99", 103, 104), "00:00:00:247");
    EXPECT_EQ(U::adjustTimecode("00:00:00:01", 104, 103), "00:00:00:00");
}

TEST(AdjustTimecode, ChangesNothingWithoutNeed) {
    EXPECT_EQ(U::adjustTimecode("01:00:00:24", 100, 101), "01:00:00:24");  // 30 and 30
    EXPECT_EQ(U::adjustTimecode("01:00:00:24", 111, 110), "01:00:00:24");
    EXPECT_EQ(U::adjustTimecode("01:00:00:24", -5, 99999), "01:00:00:24");
    EXPECT_EQ(U::adjustTimecode("1:00:00:24", 105, 103), "1:00:00:24");
    EXPECT_EQ(U::adjustTimecode("", 105, 103), "");
}

// ---- timecode to frames

struct TimecodeCase {
    const char* name;
    std::string timecode;
    std::uint64_t rate;
    std::int32_t frames;
};

class TimecodeToFrames : public testing::TestWithParam<TimecodeCase> {};

TEST_P(TimecodeToFrames, CountsAtTheRate) {
    const TimecodeCase& row = GetParam();
    EXPECT_EQ(U::framesRepresentedByTimecode(row.timecode, rate(row.rate)), row.frames);
}

INSTANTIATE_TEST_SUITE_P(
    Table, TimecodeToFrames,
    testing::Values(TimecodeCase{"MinuteOf29_97", "00:01:00;02", 5, 1798},
                    TimecodeCase{"MinuteOf30", "00:01:00:00", 6, 1800},
                    TimecodeCase{"TenMinutesOf29_97", "00:10:00;00", 5, 17964},
                    TimecodeCase{"SinglePrecisionOfALongSum", "23:59:28;00", 5, 2585857},
                    TimecodeCase{"HourOf29_97", "01:00:00;00", 5, 107784},
                    TimecodeCase{"HourOf25", "01:00:00:00", 3, 90000},
                    TimecodeCase{"SeparatorDoesNotCount", "01:00:00;00", 3, 90000},
                    TimecodeCase{"FramesAlone", "00:00:00:24", 3, 24},
                    TimecodeCase{"UndefinedRateCountsFrames", "01:00:00:24", 10, 24},
                    TimecodeCase{"UnknownRateCountsFrames", "01:00:00:24", 99, 24},
                    TimecodeCase{"FieldsWithoutRange", "99:99:99:99", 6,
                                 10692000 + 178200 + 2970 + 99},
                    TimecodeCase{"NotValid", "1:00:00:00", 3, 0}, TimecodeCase{"Empty", "", 3, 0}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(TimecodeToFrames, KeptTwoLabelsAMinuteForEveryDropFrameRate) {
    // 59.94: 3596.4 - 2, where four labels a minute are passed over
    EXPECT_EQ(U::framesRepresentedByTimecode("00:01:00;00", QRXVideoFrameRate59_94i), 3594);
    // 23.976: 1438.56 - 2, where none is
    EXPECT_EQ(U::framesRepresentedByTimecode("00:01:00;00", QRXVideoFrameRate23_976), 1436);
}

TEST(TotalFrames, CountsAtTheNumber) {
    EXPECT_EQ(U::totalFramesInTimeCode("00:10:00;00", 29.97, true), 17964);
    EXPECT_EQ(U::totalFramesInTimeCode("00:10:00;00", 29.97, false), 17982);
    EXPECT_EQ(U::totalFramesInTimeCode("01:00:00:00", 25), 90000);
    EXPECT_EQ(U::totalFramesInTimeCode("00:00:10;15", 30), 315);
}

TEST(TotalFrames, KeptRateIsRoundedToTwoDecimalsFirst) {
    EXPECT_EQ(U::totalFramesInTimeCode("00:00:10:00", 23.976, false), 239);  // at 23.98
    EXPECT_EQ(U::totalFramesInTimeCode("10:00:00:00", 23.976, false), 863280);
}

TEST(TotalFrames, ReadsFieldsByPositionAlone) {
    EXPECT_EQ(U::totalFramesInTimeCode("00x00x02x05", 25), 55);
    EXPECT_EQ(U::totalFramesInTimeCode("00x00x02x05 and more", 25), 55);
    EXPECT_EQ(U::totalFramesInTimeCode("aa:bb:cc:dd", 25), 0);
    EXPECT_EQ(U::totalFramesInTimeCode("-1:00:00:00", 25), -90000);
    EXPECT_EQ(U::totalFramesInTimeCode("00é00é02é05", 25), 55);  // a character is one position
    EXPECT_EQ(U::totalFramesInTimeCode("٣٤:00:00:05", 25), 5);
}

TEST(TotalFrames, TooShortATextIsZero) {
    const std::string timecode = "01:00:00:10";
    for (std::size_t length = 0; length < timecode.size(); ++length) {
        SCOPED_TRACE(length);
        EXPECT_EQ(U::totalFramesInTimeCode(timecode.substr(0, length), 25), 0);
    }
}

TEST(TotalFrames, HostileRatesSaturate) {
    EXPECT_EQ(U::totalFramesInTimeCode("01:00:00:00", 1e300, false), kHighest);
    EXPECT_EQ(U::totalFramesInTimeCode("01:00:00:00", -1e300, false), kLowest);
    EXPECT_EQ(U::totalFramesInTimeCode("99:99:99:99", kHighest), kHighest);
    EXPECT_EQ(U::totalFramesInTimeCode("99:99:99:99", kLowest), kLowest);
    EXPECT_EQ(
        U::totalFramesInTimeCode("01:00:00:07", std::numeric_limits<double>::quiet_NaN(), false),
        7);
}

}  // namespace
}  // namespace qrx
