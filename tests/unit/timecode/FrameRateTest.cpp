#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "timecode/FrameRateDefinitionFacts.h"
#include "timecode/QRXTimecodeUtility.h"
#include "timecode/VideoFrameRateFacts.h"

namespace qrx {
namespace {

using U = QRXTimecodeUtility;
using Rates = std::vector<QRXVideoFrameRate>;

constexpr QRXVideoFrameRate rate(std::uint64_t number) {
    return static_cast<QRXVideoFrameRate>(number);
}

constexpr QRXViewType kOtherView = static_cast<QRXViewType>(2);
constexpr QRXScanType kOtherScan = static_cast<QRXScanType>(2);
constexpr std::array kUnknownRates{rate(11), rate(100), rate(UINT64_MAX)};

Rates rates(std::initializer_list<std::uint64_t> numbers) {
    Rates list;
    for (const std::uint64_t number : numbers) {
        list.push_back(rate(number));
    }
    return list;
}

// ---- the table of rates, row by row, written as numbers

struct RateRow {
    const char* name;
    std::uint64_t number;
    double numeric;
    const char* text;
    bool drop;
    bool progressive;
    bool interlaced;
    bool ntsc;
    std::uint64_t nonDropEquivalent;
    std::uint64_t dropEquivalent;
    std::uint64_t progressiveEquivalent;
    std::uint64_t interlacedEquivalent;
    std::uint64_t palEquivalent;
    std::int32_t old;
};

constexpr RateRow kRateRows[] = {
    {"Rate24", 0, 24.0, "24", false, true, false, false, 0, 1, 0, 10, 2, 103},
    {"Rate23_976", 1, 23.976, "23.976", true, true, false, true, 0, 1, 1, 10, 2, 107},
    {"RatePAL", 2, 25.0, "25", false, true, false, false, 2, 2, 2, 10, 2, 102},
    {"Rate25", 3, 25.0, "25", false, true, false, false, 3, 3, 3, 4, 10, 111},
    {"Rate50i", 4, 59.94, "59.94", false, false, true, false, 4, 4, 3, 4, 10, 109},
    {"Rate29_97", 5, 29.97, "29.97", true, true, false, true, 6, 5, 5, 7, 10, 100},
    {"Rate30", 6, 30.0, "30", false, true, false, false, 6, 5, 6, 10, 10, 101},
    {"Rate59_94i", 7, 59.94, "59.94", true, false, true, true, 9, 7, 5, 7, 10, 104},
    {"Rate50p", 8, 59.94, "59.94", false, true, false, false, 8, 8, 8, 10, 10, 105},
    {"Rate60", 9, 60.0, "60", false, true, false, false, 9, 7, 9, 10, 10, 113},
    {"Undefined", 10, 0.0, "0", false, false, false, false, 10, 10, 10, 10, 10, 106},
};

class VideoFrameRate : public testing::TestWithParam<RateRow> {};

TEST_P(VideoFrameRate, AnswersItsRow) {
    const RateRow& row = GetParam();
    const QRXVideoFrameRate subject = rate(row.number);
    EXPECT_EQ(U::numericRateForVideoFrameRate(subject), row.numeric);
    EXPECT_EQ(U::numericRateForVideoFrameRate(subject, QRXViewTypeStandard), row.numeric);
    EXPECT_EQ(U::stringRateForVideoFrameRate(subject), row.text);
    EXPECT_EQ(U::videoFrameRateIsDropFrame(subject), row.drop);
    EXPECT_EQ(U::frameRateIsDrop(subject), row.drop);
    EXPECT_EQ(U::videoFrameRateIsProgressive(subject), row.progressive);
    EXPECT_EQ(U::videoFrameRateIsInterlaced(subject), row.interlaced);
    EXPECT_EQ(U::videoFrameRateIsNTSC(subject), row.ntsc);
    EXPECT_EQ(U::nonDropFrameEquivalentForVideoFrameRate(subject), row.nonDropEquivalent);
    EXPECT_EQ(U::nonDropFrameRateForDropFrameRate(subject), row.nonDropEquivalent);
    EXPECT_EQ(U::dropFrameEquivalentForVideoFrameRate(subject), row.dropEquivalent);
    EXPECT_EQ(U::dropFrameRateForNonDropFrameRate(subject), row.dropEquivalent);
    EXPECT_EQ(U::progressiveEquivalentForVideoFrameRate(subject), row.progressiveEquivalent);
    EXPECT_EQ(U::interlacedEquivalentForVideoFrameRate(subject), row.interlacedEquivalent);
    EXPECT_EQ(U::palEquivalentForVideoFrameRate(subject), row.palEquivalent);
    EXPECT_EQ(U::convertVideoFrameRateDefinitionToOld(subject), row.old);
}

INSTANTIATE_TEST_SUITE_P(Table, VideoFrameRate, testing::ValuesIn(kRateRows),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(VideoFrameRates, NumbersAreFixed) {
    EXPECT_EQ(QRXVideoFrameRate24, 0);
    EXPECT_EQ(QRXVideoFrameRate23_976, 1);
    EXPECT_EQ(QRXVideoFrameRatePAL, 2);
    EXPECT_EQ(QRXVideoFrameRate25, 3);
    EXPECT_EQ(QRXVideoFrameRate50i, 4);
    EXPECT_EQ(QRXVideoFrameRate29_97, 5);
    EXPECT_EQ(QRXVideoFrameRate30, 6);
    EXPECT_EQ(QRXVideoFrameRate59_94i, 7);
    EXPECT_EQ(QRXVideoFrameRate50p, 8);
    EXPECT_EQ(QRXVideoFrameRate60, 9);
    EXPECT_EQ(QRXVideoFrameRateUndefined, 10);
    EXPECT_EQ(QRXScanTypeProgressive, 0);
    EXPECT_EQ(QRXScanTypeInterlaced, 1);
    EXPECT_EQ(QRXViewTypeStandard, 0);
    EXPECT_EQ(QRXViewTypeFrame, 1);
}

TEST(VideoFrameRates, UnknownNumbersAreHeldAndAnswered) {
    for (const QRXVideoFrameRate unknown : kUnknownRates) {
        SCOPED_TRACE(static_cast<std::uint64_t>(unknown));
        EXPECT_EQ(U::numericRateForVideoFrameRate(unknown), 0.0);
        EXPECT_EQ(U::numericRateForVideoFrameRate(unknown, QRXViewTypeFrame), 0.0);
        EXPECT_EQ(U::stringRateForVideoFrameRate(unknown), "0");
        EXPECT_FALSE(U::videoFrameRateIsDropFrame(unknown));
        EXPECT_FALSE(U::frameRateIsDrop(unknown));
        EXPECT_FALSE(U::videoFrameRateIsProgressive(unknown));
        EXPECT_FALSE(U::videoFrameRateIsInterlaced(unknown));
        EXPECT_FALSE(U::videoFrameRateIsNTSC(unknown));
        EXPECT_EQ(U::nonDropFrameEquivalentForVideoFrameRate(unknown), unknown);
        EXPECT_EQ(U::dropFrameEquivalentForVideoFrameRate(unknown), unknown);
        EXPECT_EQ(U::nonDropFrameRateForDropFrameRate(unknown), unknown);
        EXPECT_EQ(U::dropFrameRateForNonDropFrameRate(unknown), unknown);
        EXPECT_EQ(U::progressiveEquivalentForVideoFrameRate(unknown), unknown);
        EXPECT_EQ(U::interlacedEquivalentForVideoFrameRate(unknown), QRXVideoFrameRateUndefined);
        EXPECT_EQ(U::palEquivalentForVideoFrameRate(unknown), QRXVideoFrameRateUndefined);
        EXPECT_EQ(U::videoFrameRateEquivalentForFrameRate(unknown, QRXViewTypeFrame), unknown);
        EXPECT_EQ(U::convertVideoFrameRateDefinitionToOld(unknown), 107);
    }
}

TEST(VideoFrameRates, Defaults) {
    EXPECT_EQ(U::defaultScanType(), 0);
    EXPECT_EQ(U::defaultViewType(), 0);
    EXPECT_EQ(U::defaultVideoFrameRate(), 6);
    EXPECT_EQ(U::defaultFramerateDefinition(), 110);
}

TEST(VideoFrameRates, Lists) {
    EXPECT_EQ(U::allDefinedVideoFrameRates(), rates({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(U::interlacedVideoFrameRates(), rates({4, 7}));
    EXPECT_EQ(U::progressiveVideoFrameRates(), rates({0, 1, 2, 3, 5, 6, 8, 9}));
    EXPECT_EQ(U::palVideoFrameRates(), rates({2}));
    EXPECT_EQ(U::ntscFrameRates(), rates({1, 5, 7}));
    EXPECT_EQ(U::dropFrameVideoFrameRates(), rates({1, 5, 7}));
    EXPECT_EQ(U::nonDropFrameVideoFrameRates(), rates({0, 2, 3, 4, 6, 8, 9}));
}

TEST(VideoFrameRates, EquivalentsSettleInOneStep) {
    for (const VideoFrameRateFacts& facts : kVideoFrameRateFacts) {
        SCOPED_TRACE(static_cast<std::uint64_t>(facts.rate));
        EXPECT_EQ(factsOf(facts.nonDrop).nonDrop, facts.nonDrop);
        EXPECT_EQ(factsOf(facts.drop).drop, facts.drop);
        EXPECT_EQ(factsOf(facts.progressive).progressive, facts.progressive);
        EXPECT_EQ(factsOf(facts.interlaced).interlaced, facts.interlaced);
        EXPECT_FALSE(factsOf(facts.nonDrop).dropFrame);
        EXPECT_NE(factsOf(facts.progressive).scan, Scan::interlaced);
        EXPECT_NE(factsOf(facts.interlaced).scan, Scan::progressive);
    }
}

// ---- views

TEST(FrameView, ChangesInterlacedRatesOnly) {
    EXPECT_EQ(U::numericRateForVideoFrameRate(QRXVideoFrameRate59_94i, QRXViewTypeFrame), 29.97);
    EXPECT_EQ(U::numericRateForVideoFrameRate(QRXVideoFrameRate50i, QRXViewTypeFrame), 25.0);
    for (const QRXVideoFrameRate each : U::progressiveVideoFrameRates()) {
        SCOPED_TRACE(static_cast<std::uint64_t>(each));
        EXPECT_EQ(U::numericRateForVideoFrameRate(each, QRXViewTypeFrame),
                  U::numericRateForVideoFrameRate(each));
        EXPECT_EQ(U::videoFrameRateEquivalentForFrameRate(each, QRXViewTypeFrame), each);
    }
    EXPECT_EQ(U::videoFrameRateEquivalentForFrameRate(QRXVideoFrameRate50i, QRXViewTypeFrame),
              QRXVideoFrameRate25);
    EXPECT_EQ(U::videoFrameRateEquivalentForFrameRate(QRXVideoFrameRate59_94i, QRXViewTypeFrame),
              QRXVideoFrameRate29_97);
}

TEST(FrameView, StandardAndUnknownViewsChangeNothing) {
    for (const QRXVideoFrameRate each : U::allDefinedVideoFrameRates()) {
        SCOPED_TRACE(static_cast<std::uint64_t>(each));
        for (const QRXViewType view : {QRXViewTypeStandard, kOtherView}) {
            EXPECT_EQ(U::videoFrameRateEquivalentForFrameRate(each, view), each);
            EXPECT_EQ(U::numericRateForVideoFrameRate(each, view),
                      U::numericRateForVideoFrameRate(each));
        }
    }
}

TEST(FrameView, KeptFiftyHasTheNumericRate59_94) {
    EXPECT_EQ(U::numericRateForVideoFrameRate(QRXVideoFrameRate50p), 59.94);
    EXPECT_EQ(U::numericRateForVideoFrameRate(QRXVideoFrameRate50i), 59.94);
    EXPECT_EQ(U::numericRateForVideoFrameRate(QRXVideoFrameRate50p, QRXViewTypeFrame), 59.94);
}

TEST(PalEquivalent, KeptTwentyFiveHasNone) {
    EXPECT_EQ(U::palEquivalentForVideoFrameRate(QRXVideoFrameRate24), QRXVideoFrameRatePAL);
    EXPECT_EQ(U::palEquivalentForVideoFrameRate(QRXVideoFrameRate25), QRXVideoFrameRateUndefined);
    EXPECT_EQ(U::palEquivalentForVideoFrameRate(QRXVideoFrameRate50i), QRXVideoFrameRateUndefined);
}

TEST(AdjustedFrameRate, KeptPlaceholderIsAlwaysZero) {
    EXPECT_EQ(U::adjustedFrameRate(29.97, true), 0.0);
    EXPECT_EQ(U::adjustedFrameRate(24.0, false), 0.0);
}

// ---- from numbers

struct NumberCase {
    const char* name;
    double number;
    std::uint64_t progressive;
    std::uint64_t interlaced;
};

class RateFromNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(RateFromNumber, IsTheRateItMeans) {
    const NumberCase& row = GetParam();
    EXPECT_EQ(U::videoFrameRateFromNumericRate(row.number), row.progressive);
    EXPECT_EQ(U::videoFrameRateFromNumericRate(row.number, QRXScanTypeProgressive),
              row.progressive);
    EXPECT_EQ(U::videoFrameRateFromNumericRate(row.number, kOtherScan), row.progressive);
    EXPECT_EQ(U::videoFrameRateFromNumericRate(row.number, QRXScanTypeInterlaced), row.interlaced);
    EXPECT_EQ(U::frameRateForDouble(row.number), row.progressive);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RateFromNumber,
    testing::Values(
        NumberCase{"Sixty", 60.0, 9, 7}, NumberCase{"RoundsUpToSixty", 59.996, 9, 7},
        NumberCase{"RoundsDownToSixty", 60.004, 9, 7}, NumberCase{"AboveSixty", 60.01, 10, 10},
        NumberCase{"FiftyNine94", 59.94, 7, 7},
        NumberCase{"Exactly60000By1001", 60000.0 / 1001, 7, 7},
        NumberCase{"InsideTheRangeOf59_94", 59.9301, 7, 7},
        NumberCase{"UpperEdgeOf59_94", 59.95, 10, 10},
        NumberCase{"LowerEdgeOf59_94", 59.93, 10, 10}, NumberCase{"Fifty", 50.0, 8, 4},
        NumberCase{"RoundsToFifty", 49.996, 8, 4}, NumberCase{"Thirty", 30.0, 6, 6},
        NumberCase{"TwentyNine97", 29.97, 5, 5},
        NumberCase{"Exactly30000By1001", 30000.0 / 1001, 5, 5},
        NumberCase{"RawRangeOf29_97", 29.969, 5, 5},
        NumberCase{"RoundsTo29_96ButInRange", 29.965, 5, 5},
        NumberCase{"LowerEdgeOf29_97", 29.96, 10, 10},
        NumberCase{"UpperEdgeOf29_97", 29.98, 10, 10},
        NumberCase{"TwentyFiveIsNeverPAL", 25.0, 3, 3}, NumberCase{"TwentyFour", 24.0, 0, 0},
        NumberCase{"RoundsToTwentyFour", 23.996, 0, 0}, NumberCase{"TwentyThree976", 23.976, 1, 1},
        NumberCase{"TwentyThree98", 23.98, 1, 1}, NumberCase{"TwentyThree975", 23.975, 1, 1},
        NumberCase{"Exactly24000By1001", 24000.0 / 1001, 1, 1},
        NumberCase{"TwentyThree9", 23.9, 10, 10}, NumberCase{"LowerEdgeOf23_98", 23.97, 10, 10},
        NumberCase{"UpperEdgeOf23_98", 23.99, 10, 10}, NumberCase{"Zero", 0.0, 10, 10},
        NumberCase{"Negative", -25.0, 10, 10}, NumberCase{"Fifteen", 15.0, 10, 10},
        NumberCase{"Huge", 1e300, 10, 10},
        NumberCase{"Infinite", std::numeric_limits<double>::infinity(), 10, 10},
        NumberCase{"NotANumber", std::numeric_limits<double>::quiet_NaN(), 10, 10}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(RateFromNumber, KeptFiftyNine94IsInterlacedForEveryScanType) {
    EXPECT_EQ(U::videoFrameRateFromNumericRate(59.94, QRXScanTypeProgressive),
              QRXVideoFrameRate59_94i);
}

TEST(RateFromNumber, RoundTripsEveryRateButTheSharedNumbers) {
    for (const QRXVideoFrameRate each : U::allDefinedVideoFrameRates()) {
        SCOPED_TRACE(static_cast<std::uint64_t>(each));
        const double numeric = U::numericRateForVideoFrameRate(each);
        const QRXVideoFrameRate expected = each == QRXVideoFrameRatePAL ? QRXVideoFrameRate25
                                           : numeric == 59.94           ? QRXVideoFrameRate59_94i
                                                                        : each;
        EXPECT_EQ(U::videoFrameRateFromNumericRate(numeric), expected);
    }
}

// ---- from descriptions

struct DescriptionCase {
    const char* name;
    std::string text;
    std::uint64_t plain;
    std::uint64_t progressive;
    std::uint64_t interlaced;
};

class RateFromDescription : public testing::TestWithParam<DescriptionCase> {};

TEST_P(RateFromDescription, IsDecidedByTwoCharacters) {
    const DescriptionCase& row = GetParam();
    EXPECT_EQ(U::videoFrameRateFromFrameRateDescription(row.text), row.plain);
    EXPECT_EQ(U::videoFrameRateFromFrameRateDescription(row.text, QRXScanTypeProgressive),
              row.progressive);
    EXPECT_EQ(U::videoFrameRateFromFrameRateDescription(row.text, QRXScanTypeInterlaced),
              row.interlaced);
    EXPECT_EQ(U::videoFrameRateFromFrameRateDescription(row.text, kOtherScan), row.plain);
}

INSTANTIATE_TEST_SUITE_P(Table, RateFromDescription,
                         testing::Values(DescriptionCase{"Sixty", "60", 9, 9, 10},
                                         DescriptionCase{"FiftyNine", "59.94", 7, 5, 7},
                                         DescriptionCase{"Fifty", "50", 8, 8, 10},
                                         DescriptionCase{"Thirty", "30", 6, 6, 10},
                                         DescriptionCase{"TwentyNine", "29.97 DF", 5, 5, 7},
                                         DescriptionCase{"TwentyNineShort", "29", 5, 5, 7},
                                         DescriptionCase{"BlanksAround", " \t2997\u00A0 ", 5, 5, 7},
                                         DescriptionCase{"TwentyFive", "25p", 3, 3, 4},
                                         DescriptionCase{"TwentyFour", "24", 0, 0, 10},
                                         DescriptionCase{"TwentyThree", "23.98", 1, 1, 10},
                                         DescriptionCase{"OneCharacter", "6", 10, 10, 10},
                                         DescriptionCase{"OneCharacterAndBlank", "6 ", 10, 10, 10},
                                         DescriptionCase{"Empty", "", 10, 10, 10},
                                         DescriptionCase{"Unknown", "15", 10, 10, 10},
                                         DescriptionCase{"NumberLater", "p25", 10, 10, 10},
                                         DescriptionCase{"LineEndsAreNotTrimmed", "\n25", 10, 10,
                                                         10},
                                         DescriptionCase{"BlankBetween", "2 5", 10, 10, 10}),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- the older definitions

struct OldRow {
    const char* name;
    std::int32_t definition;
    std::uint64_t rate;
    std::int32_t numeric;
    const char* text;
};

class OldDefinition : public testing::TestWithParam<OldRow> {};

TEST_P(OldDefinition, AnswersItsRow) {
    const OldRow& row = GetParam();
    EXPECT_EQ(U::convertOldFrameRateDefinition(row.definition), row.rate);
    EXPECT_EQ(U::numericMovieRateFromRateDefinitions(row.definition), row.numeric);
    EXPECT_EQ(U::movieRateFromRateDefinition(row.definition), row.text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, OldDefinition,
    testing::Values(OldRow{"DropFrame2997", 100, 5, 30, "2997"},
                    OldRow{"NonDropFrame2997", 101, 6, 30, "2997"}, OldRow{"PAL", 102, 2, 25, "25"},
                    OldRow{"TwentyFour", 103, 0, 24, "24"}, OldRow{"Rate5994", 104, 7, 60, "5994"},
                    OldRow{"Fifty", 105, 8, 50, "50"}, OldRow{"Unmapped", 106, 10, 30, "30"},
                    OldRow{"Undefined", 107, 10, 30, "30"},
                    OldRow{"Rate5994Second", 108, 7, 60, "5994"},
                    OldRow{"FiftyInterlaced", 109, 4, 50, "25"}, OldRow{"Thirty", 110, 6, 30, "30"},
                    OldRow{"TwentyFive", 111, 3, 30, "30"},
                    OldRow{"TwentyFourSecond", 112, 0, 24, "30"}, OldRow{"Sixty", 113, 9, 60, "30"},
                    OldRow{"Below", 99, 10, 30, "30"}, OldRow{"Above", 114, 10, 30, "30"},
                    OldRow{"Zero", 0, 10, 30, "30"},
                    OldRow{"Lowest", std::numeric_limits<std::int32_t>::min(), 10, 30, "30"},
                    OldRow{"Highest", std::numeric_limits<std::int32_t>::max(), 10, 30, "30"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(OldDefinitions, KeptNumbersAndTextsThatDisagreeWithTheRate) {
    EXPECT_EQ(U::numericMovieRateFromRateDefinitions(QRXFrameRateDefinition25), 30);
    EXPECT_EQ(U::movieRateFromRateDefinition(QRXFrameRateDefinition25), "30");
    EXPECT_EQ(U::movieRateFromRateDefinition(QRXFrameRateDefinition24Second), "30");
    EXPECT_EQ(U::movieRateFromRateDefinition(QRXFrameRateDefinition60), "30");
}

TEST(OldDefinitions, Lists) {
    using Old = std::vector<std::int32_t>;
    const auto all = U::allDefinedOldFrameRates();
    const auto movie = U::allDefinedMovieRates();
    EXPECT_EQ(Old(all.begin(), all.end()),
              (Old{100, 101, 102, 103, 106, 104, 105, 108, 109, 110, 111, 112, 113}));
    EXPECT_EQ(Old(movie.begin(), movie.end()), (Old{101, 100, 110, 102, 103, 104, 105}));
}

TEST(OldDefinitions, FirstMatchWinsOnTheWayBack) {
    EXPECT_EQ(U::convertVideoFrameRateDefinitionToOld(QRXVideoFrameRate24), 103);         // not 112
    EXPECT_EQ(U::convertVideoFrameRateDefinitionToOld(QRXVideoFrameRate30), 101);         // not 110
    EXPECT_EQ(U::convertVideoFrameRateDefinitionToOld(QRXVideoFrameRate59_94i), 104);     // not 108
    EXPECT_EQ(U::convertVideoFrameRateDefinitionToOld(QRXVideoFrameRateUndefined), 106);  // not 107
    EXPECT_EQ(U::convertVideoFrameRateDefinitionToOld(QRXVideoFrameRate23_976), 107);
}

TEST(OldDefinitions, EveryRateWithADefinitionRoundTrips) {
    for (const QRXVideoFrameRate each : U::allDefinedVideoFrameRates()) {
        if (each == QRXVideoFrameRate23_976) continue;
        SCOPED_TRACE(static_cast<std::uint64_t>(each));
        EXPECT_EQ(U::convertOldFrameRateDefinition(U::convertVideoFrameRateDefinitionToOld(each)),
                  each);
    }
}

// ---- movie rates

struct MovieTextCase {
    const char* name;
    std::optional<std::string> text;
    std::int32_t nonDrop;
    std::int32_t drop;
};

class MovieRateFromText : public testing::TestWithParam<MovieTextCase> {};

TEST_P(MovieRateFromText, IsTheFirstNumberInOrder) {
    EXPECT_EQ(U::movieRateFromString(GetParam().text, false), GetParam().nonDrop);
    EXPECT_EQ(U::movieRateFromString(GetParam().text, true), GetParam().drop);
}

INSTANTIATE_TEST_SUITE_P(Table, MovieRateFromText,
                         testing::Values(MovieTextCase{"Point2997", "29.97", 101, 100},
                                         MovieTextCase{"Plain2997", "2997", 101, 100},
                                         MovieTextCase{"AmongOthers", "at 29.97 fps", 101, 100},
                                         MovieTextCase{"TwentyFour", "24", 103, 103},
                                         MovieTextCase{"TwentyThree", "23.98", 103, 103},
                                         MovieTextCase{"TwentyFive", "25", 102, 102},
                                         MovieTextCase{"Thirty", "30", 110, 110},
                                         MovieTextCase{"Fifty", "50", 105, 105},
                                         MovieTextCase{"Plain5994", "5994", 104, 104},
                                         MovieTextCase{"Point5994", "59.94", 104, 104},
                                         MovieTextCase{"TwentyNineAlone", "29", 107, 107},
                                         MovieTextCase{"Empty", "", 107, 107},
                                         MovieTextCase{"Absent", std::nullopt, 107, 107}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(MovieRateFromText, KeptSixtyIsUnknownAndSubstringsDecide) {
    EXPECT_EQ(U::movieRateFromString("60", false), 107);
    EXPECT_EQ(U::movieRateFromString("59.9425", false), 102);
}

TEST(MovieRateFromNumber, IsDecidedByTwoCharacters) {
    EXPECT_EQ(U::movieRateFromNumber(29.97), 101);
    EXPECT_EQ(U::movieRateFromNumber(23.976), 103);
    EXPECT_EQ(U::movieRateFromNumber(24), 103);
    EXPECT_EQ(U::movieRateFromNumber(25), 102);
    EXPECT_EQ(U::movieRateFromNumber(50), 105);
    EXPECT_EQ(U::movieRateFromNumber(59.94), 104);
    EXPECT_EQ(U::movieRateFromNumber(5), 107);
    EXPECT_EQ(U::movieRateFromNumber(0), 107);
    EXPECT_EQ(U::movieRateFromNumber(-25), 107);
    EXPECT_EQ(U::movieRateFromNumber(2.5), 107);
    EXPECT_EQ(U::movieRateFromNumber(2500), 102);
    EXPECT_EQ(U::movieRateFromNumber(std::numeric_limits<double>::infinity()), 107);
}

TEST(MovieRateFromNumber, KeptThirtyAndSixtyAreUnknown) {
    EXPECT_EQ(U::movieRateFromNumber(30), 107);
    EXPECT_EQ(U::movieRateFromNumber(60), 107);
}

}  // namespace
}  // namespace qrx
