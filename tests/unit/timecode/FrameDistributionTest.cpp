#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "timecode/FrameDistribution.h"
#include "timecode/QRXTimecodeUtility.h"

namespace qrx {
namespace {

using U = QRXTimecodeUtility;

constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/// Every form of the whole division says the same.
void expectWhole(std::int32_t frames, std::int32_t per, std::int32_t quotient,
                 std::int32_t remainder) {
    SCOPED_TRACE(testing::Message() << frames << " by " << per);
    std::int32_t time = 77;
    EXPECT_EQ(U::remainingFramesAfterDistributionToTimeMeasurement(&time, frames, per), remainder);
    EXPECT_EQ(time, quotient);
    time = 77;
    EXPECT_EQ(U::findTimeRepresentedByFrames(frames, per, &time), remainder);
    EXPECT_EQ(time, quotient);
}

TEST(WholeDistribution, Truncates) {
    expectWhole(7, 3, 2, 1);
    expectWhole(-7, 3, -2, -1);
    expectWhole(7, -3, -2, 1);
    expectWhole(1799, 1800, 0, 1799);
    expectWhole(kHighest, kHighest, 1, 0);
}

TEST(WholeDistribution, ZerosGiveZeros) {
    expectWhole(0, 30, 0, 0);
    expectWhole(30, 0, 0, 0);
    expectWhole(0, 0, 0, 0);
}

TEST(WholeDistribution, LowestByMinusOneSaturates) {
    expectWhole(kLowest, -1, kHighest, 0);
    expectWhole(kLowest, 1, kLowest, 0);
}

TEST(WholeDistribution, NobodyNeedsToTakeTheQuotient) {
    EXPECT_EQ(U::findTimeRepresentedByFrames(7, 3, nullptr), 1);
    EXPECT_EQ(U::remainingFramesAfterDistributionToTimeMeasurement(nullptr, 7, 3), 1);
    EXPECT_EQ(U::framesRemainingAfterDistribution(7, nullptr, 3.0), 1);
}

/// The rule as it is told: n goes up from 0 until n + 1 measures exceed the count.
Distribution counted(std::int32_t frames, double per) {
    if (frames == 0) return {};
    std::int32_t n = 0;
    while (!((n + 1.0) * per > frames))
        ++n;
    return {n, static_cast<std::int32_t>(frames - n * per)};
}

void expectAsCounted(std::int32_t frames, double per) {
    const Distribution expected = counted(frames, per);
    std::int32_t time = 77;
    ASSERT_EQ(U::framesRemainingAfterDistribution(frames, &time, per), expected.remainder)
        << frames << " by " << per;
    ASSERT_EQ(time, expected.quotient) << frames << " by " << per;
}

TEST(FractionalDistribution, AgreesWithCounting) {
    const double rates[] = {23.976, 24.0, 25.0,  29.97, 30.0,      50.0,
                            59.94,  60.0, 0.125, 1.0,   1.0 / 3.0, 0.1};
    for (const double rate : rates) {
        for (const double per : {rate, 60.0 * rate, 3600.0 * rate}) {
            for (std::int32_t frames = -100; frames < 8000; ++frames) {
                expectAsCounted(frames, per);
            }
        }
    }
}

TEST(FractionalDistribution, AgreesWithCountingAroundEveryMultiple) {
    for (const double rate : {23.976, 29.97, 59.94, static_cast<double>(29.97F)}) {
        for (const double per : {rate, 60.0 * rate, 3600.0 * rate}) {
            for (std::int32_t n = 1; n < 3000; n += 7) {
                const auto frames = static_cast<std::int32_t>(n * per);
                expectAsCounted(frames - 1, per);
                expectAsCounted(frames, per);
                expectAsCounted(frames + 1, per);
            }
        }
    }
}

TEST(FractionalDistribution, AgreesWithCountingForHugeCounts) {
    for (std::int32_t back = 0; back < 200; ++back) {
        expectAsCounted(kHighest - back, 107892.0);
        expectAsCounted(kHighest - back, 1e9 / 3.0);
        expectAsCounted(kLowest + back, 29.97);
    }
}

TEST(FractionalDistribution, SmallMeasuresEndAtOnce) {
    std::int32_t time = 0;
    EXPECT_EQ(U::framesRemainingAfterDistribution(kHighest, &time, 1e-300), kHighest);
    EXPECT_EQ(time, kHighest);
    EXPECT_EQ(U::framesRemainingAfterDistribution(kHighest, &time, 1.0), 0);
    EXPECT_EQ(time, kHighest);
    EXPECT_EQ(U::framesRemainingAfterDistribution(kHighest, &time,
                                                  std::numeric_limits<double>::denorm_min()),
              kHighest);
    EXPECT_EQ(time, kHighest);
}

TEST(FractionalDistribution, MeasuresThatNeverExceedTheCountGiveZeros) {
    for (const double per : {0.0, -0.0, -29.97, -kInfinity, kNotANumber}) {
        SCOPED_TRACE(per);
        std::int32_t time = 77;
        EXPECT_EQ(U::framesRemainingAfterDistribution(100, &time, per), 0);
        EXPECT_EQ(time, 0);
    }
    std::int32_t time = 77;
    EXPECT_EQ(U::framesRemainingAfterDistribution(0, &time, 29.97), 0);
    EXPECT_EQ(time, 0);
}

TEST(FractionalDistribution, NegativeCountsStayWhole) {
    std::int32_t time = 77;
    EXPECT_EQ(U::framesRemainingAfterDistribution(-5, &time, 30.0), -5);
    EXPECT_EQ(time, 0);
    EXPECT_EQ(U::framesRemainingAfterDistribution(-10, &time, -3.0), -10);  // -3 is above -10
    EXPECT_EQ(time, 0);
    EXPECT_EQ(U::framesRemainingAfterDistribution(kLowest, &time, kInfinity), kLowest);
    EXPECT_EQ(time, 0);
}

}  // namespace
}  // namespace qrx
