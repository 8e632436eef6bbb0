#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "timecode/QRXTimecodeUtility.h"

namespace qrx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using U = QRXTimecodeUtility;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

// ---- from frame numbers

TEST(SeriesFromFrames, CountsFromTheOffset) {
    EXPECT_THAT(U::timecodeSeriesForFrames(3, 0, 25.0F, false),
                ElementsAre("00:00:00:00", "00:00:00:01", "00:00:00:02"));
    EXPECT_THAT(U::timecodeSeriesForFrames(2, 89999, 25.0F, true),
                ElementsAre("00:59:59;24", "01:00:00;00"));
}

TEST(SeriesFromFrames, DividesByTheFractionalRate) {
    // a minute has 1798.2 frames, so frame 1798 still lies in the one before
    EXPECT_THAT(U::timecodeSeriesForFrames(3, 1797, 29.97F, true),
                ElementsAre("00:00:59;28", "00:00:59;29", "00:01:00;00"));
    // 3600 x 29.97 is a whole number in single precision
    EXPECT_THAT(U::timecodeSeriesForFrames(1, 107892, 29.97F, true), ElementsAre("01:00:00;00"));
}

TEST(SeriesFromFrames, NothingWithoutACountOrARate) {
    EXPECT_THAT(U::timecodeSeriesForFrames(0, 0, 25.0F, false), IsEmpty());
    EXPECT_THAT(U::timecodeSeriesForFrames(-1, 0, 25.0F, false), IsEmpty());
    EXPECT_THAT(U::timecodeSeriesForFrames(kLowest, 0, 25.0F, false), IsEmpty());
    EXPECT_THAT(U::timecodeSeriesForFrames(5, 0, 0.0F, false), IsEmpty());
    EXPECT_THAT(U::timecodeSeriesForFrames(5, 0, -25.0F, false), IsEmpty());
    EXPECT_THAT(U::timecodeSeriesForFrames(5, 0, std::numeric_limits<float>::quiet_NaN(), false),
                IsEmpty());
}

TEST(SeriesFromFrames, HostileNumbersAreAnswered) {
    EXPECT_THAT(U::timecodeSeriesForFrames(2, 0xFFFFFFFF, 30.0F, false),
                ElementsAre("00:00:00:0-1", "00:00:00:00"));
    EXPECT_THAT(U::timecodeSeriesForFrames(1, 0x7FFFFFFF, 30.0F, false),
                ElementsAre("19884:06:28:07"));
    EXPECT_EQ(U::timecodeSeriesForFrames(2, 0x7FFFFFFF, 1e-30F, false).size(), 2U);
    EXPECT_EQ(U::timecodeSeriesForFrames(2, 5, 1e38F, false).size(), 2U);
}

TEST(SeriesFromFrames, AgreesWithSingleTimecodes) {
    const auto series = U::timecodeSeriesForFrames(4000, 106000, 30.0F, false);
    ASSERT_EQ(series.size(), 4000U);
    for (std::size_t i = 0; i < series.size(); ++i) {
        const auto frame = static_cast<std::int32_t>(106000 + i);
        ASSERT_EQ(series[i], U::createTimecodeFromFrames(frame, 30, false));
    }
}

// ---- from a start timecode

TEST(SeriesFromStart, CountsFrames) {
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("01:02:03:22", 4, 24.0F, false),
                ElementsAre("01:02:03:22", "01:02:03:23", "01:02:04:00", "01:02:04:01"));
}

TEST(SeriesFromStart, SeparatorIsTheFlagsNotTheStarts) {
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00;00", 1, 30.0F, false),
                ElementsAre("00:00:00:00"));
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00:00", 1, 30.0F, true),
                ElementsAre("00:00:00;00"));
}

TEST(SeriesFromStart, LimitIsTheRoundedRate) {
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00:28", 3, 29.97F, true),
                ElementsAre("00:00:00;28", "00:00:00;29", "00:00:01;00"));
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00:23", 2, 23.976F, false),
                ElementsAre("00:00:00:23", "00:00:01:00"));
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00:24", 3, 24.5F, false),
                ElementsAre("00:00:00:24", "00:00:01:00", "00:00:01:01"));
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00:00", 3, 0.2F, false),
                ElementsAre("00:00:00:00", "00:00:01:00", "00:00:02:00"));
}

TEST(SeriesFromStart, KeptSecondsAndMinutesShowSixty) {
    const auto series = U::timecodeSeriesForStartTimecode("00:00:59:29", 32, 30.0F, false);
    EXPECT_EQ(series[1], "00:00:60:00");
    EXPECT_EQ(series[30], "00:00:60:29");
    EXPECT_EQ(series[31], "00:01:00:00");
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:59:60:23", 2, 24.0F, false),
                ElementsAre("00:59:60:23", "00:60:00:00"));
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:60:60:29", 2, 30.0F, false),
                ElementsAre("00:60:60:29", "01:00:00:00"));
}

TEST(SeriesFromStart, KeptHoursNeverWrapAndNoLabelIsPassedOver) {
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("99:60:60:29", 2, 30.0F, false),
                ElementsAre("99:60:60:29", "100:00:00:00"));
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:60;29", 2, 29.97F, true),
                ElementsAre("00:00:60;29", "00:01:00;00"));
}

TEST(SeriesFromStart, FieldsBeyondTheirLimitWrapAtTheNextStep) {
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:75:80:99", 2, 25.0F, false),
                ElementsAre("00:75:80:99", "01:00:00:00"));
    // minutes are looked at only when the seconds carry
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:75:10:00", 2, 25.0F, false),
                ElementsAre("00:75:10:00", "00:75:10:01"));
}

TEST(SeriesFromStart, InvalidStartIsTheDefault) {
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("1:00:00:00", 2, 25.0F, true),
                ElementsAre("00:00:00;00", "00:00:00;01"));
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("", 1, 25.0F, false), ElementsAre("00:00:00:00"));
}

TEST(SeriesFromStart, NothingWithoutACountOrARate) {
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00:00", 0, 25.0F, false), IsEmpty());
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00:00", kLowest, 25.0F, false), IsEmpty());
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00:00", 5, 0.0F, false), IsEmpty());
    EXPECT_THAT(U::timecodeSeriesForStartTimecode("00:00:00:00", 5,
                                                  std::numeric_limits<float>::quiet_NaN(), false),
                IsEmpty());
}

TEST(SeriesFromStart, HostileRatesAreAnswered) {
    EXPECT_EQ(U::timecodeSeriesForStartTimecode("00:00:00:00", 3, 1e38F, false).back(),
              "00:00:00:02");
    EXPECT_EQ(U::timecodeSeriesForStartTimecode("00:00:00:00", 3,
                                                std::numeric_limits<float>::infinity(), false)
                  .back(),
              "00:00:00:02");
}

}  // namespace
}  // namespace qrx
