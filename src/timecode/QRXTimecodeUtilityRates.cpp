#include <algorithm>
#include <array>
#include <iterator>

#include "foundation/NeutralAnswer.h"
#include "foundation/Text.h"
#include "timecode/FrameRateDefinitionFacts.h"
#include "timecode/QRXTimecodeUtility.h"
#include "timecode/VideoFrameRateFacts.h"

namespace qrx {

namespace {

/// A number of frames per second that means a rate: by its value rounded to two decimals, or by the
/// raw value strictly between two bounds (equal ones where there is no such range).
struct NumericRate {
    double rounded;
    double above;
    double below;
    QRXVideoFrameRate progressive;
    QRXVideoFrameRate interlaced;
};

// First hit wins.
// KEPT: 59.94 is the interlaced rate for every scan type, since there is no progressive one; and 25
// is never the legacy PAL.
constexpr NumericRate kNumericRates[] = {
    {60.0, 60.0, 60.0, QRXVideoFrameRate60, QRXVideoFrameRate59_94i},
    {59.94, 59.93, 59.95, QRXVideoFrameRate59_94i, QRXVideoFrameRate59_94i},
    {50.0, 50.0, 50.0, QRXVideoFrameRate50p, QRXVideoFrameRate50i},
    {30.0, 30.0, 30.0, QRXVideoFrameRate30, QRXVideoFrameRate30},
    {29.97, 29.96, 29.98, QRXVideoFrameRate29_97, QRXVideoFrameRate29_97},
    {25.0, 25.0, 25.0, QRXVideoFrameRate25, QRXVideoFrameRate25},
    {24.0, 24.0, 24.0, QRXVideoFrameRate24, QRXVideoFrameRate24},
    {23.98, 23.97, 23.99, QRXVideoFrameRate23_976, QRXVideoFrameRate23_976},
};

struct DescriptionPrefix {
    std::string_view prefix;
    QRXVideoFrameRate rate;
};

constexpr DescriptionPrefix kDescriptionPrefixes[] = {
    {"60", QRXVideoFrameRate60}, {"59", QRXVideoFrameRate59_94i}, {"50", QRXVideoFrameRate50p},
    {"30", QRXVideoFrameRate30}, {"29", QRXVideoFrameRate29_97},  {"25", QRXVideoFrameRate25},
    {"24", QRXVideoFrameRate24}, {"23", QRXVideoFrameRate23_976},
};

struct MovieRateText {
    std::string_view text;
    QRXFrameRateDefinition nonDrop;
    QRXFrameRateDefinition drop;
};

// Substrings; first hit wins.
// KEPT: "60" occurs in none of the rows, and "59.9425" is PAL because "25" stands before "59.94".
constexpr MovieRateText kMovieRateTexts[] = {
    {"29.97", QRXFrameRateDefinition2997NonDropFrame, QRXFrameRateDefinition2997DropFrame},
    {"2997", QRXFrameRateDefinition2997NonDropFrame, QRXFrameRateDefinition2997DropFrame},
    {"24", QRXFrameRateDefinition24, QRXFrameRateDefinition24},
    {"23", QRXFrameRateDefinition24, QRXFrameRateDefinition24},
    {"25", QRXFrameRateDefinitionPAL, QRXFrameRateDefinitionPAL},
    {"30", QRXFrameRateDefinition30, QRXFrameRateDefinition30},
    {"50", QRXFrameRateDefinition50, QRXFrameRateDefinition50},
    {"5994", QRXFrameRateDefinition5994, QRXFrameRateDefinition5994},
    {"59.94", QRXFrameRateDefinition5994, QRXFrameRateDefinition5994},
};

struct MovieRatePrefix {
    std::string_view prefix;
    QRXFrameRateDefinition definition;
};

// KEPT: 30 and 60 are missing, and 29.97 is never drop frame, unlike the form that takes a text.
constexpr MovieRatePrefix kMovieRatePrefixes[] = {
    {"29", QRXFrameRateDefinition2997NonDropFrame},
    {"23", QRXFrameRateDefinition24},
    {"24", QRXFrameRateDefinition24},
    {"25", QRXFrameRateDefinitionPAL},
    {"50", QRXFrameRateDefinition50},
    {"59", QRXFrameRateDefinition5994},
};

double roundedToTwoDecimals(double value) {
    return doubleValue(fixedDecimals(value, 2));
}

bool isDefined(const VideoFrameRateFacts& facts) {
    return facts.rate < QRXVideoFrameRateUndefined;
}

template <class Question>
std::vector<QRXVideoFrameRate> definedRatesWhere(Question&& question) {
    std::vector<QRXVideoFrameRate> rates;
    for (const VideoFrameRateFacts& facts : kVideoFrameRateFacts) {
        if (isDefined(facts) && question(facts)) rates.push_back(facts.rate);
    }
    return rates;
}

}  // namespace

// ---- lists

std::vector<QRXVideoFrameRate> QRXTimecodeUtility::allDefinedVideoFrameRates() {
    return definedRatesWhere([](const VideoFrameRateFacts&) { return true; });
}

std::vector<QRXVideoFrameRate> QRXTimecodeUtility::interlacedVideoFrameRates() {
    return definedRatesWhere(
        [](const VideoFrameRateFacts& facts) { return facts.scan == Scan::interlaced; });
}

std::vector<QRXVideoFrameRate> QRXTimecodeUtility::progressiveVideoFrameRates() {
    return definedRatesWhere(
        [](const VideoFrameRateFacts& facts) { return facts.scan == Scan::progressive; });
}

std::vector<QRXVideoFrameRate> QRXTimecodeUtility::palVideoFrameRates() {
    return definedRatesWhere(
        [](const VideoFrameRateFacts& facts) { return facts.broadcast == Broadcast::pal; });
}

std::vector<QRXVideoFrameRate> QRXTimecodeUtility::ntscFrameRates() {
    return definedRatesWhere(
        [](const VideoFrameRateFacts& facts) { return facts.broadcast == Broadcast::ntsc; });
}

std::vector<QRXVideoFrameRate> QRXTimecodeUtility::dropFrameVideoFrameRates() {
    return definedRatesWhere([](const VideoFrameRateFacts& facts) { return facts.dropFrame; });
}

std::vector<QRXVideoFrameRate> QRXTimecodeUtility::nonDropFrameVideoFrameRates() {
    return definedRatesWhere([](const VideoFrameRateFacts& facts) { return !facts.dropFrame; });
}

std::vector<QRXFrameRateDefinition> QRXTimecodeUtility::allDefinedOldFrameRates() {
    return {kOldFrameRateSearchOrder.begin(), kOldFrameRateSearchOrder.end()};
}

std::vector<QRXFrameRateDefinition> QRXTimecodeUtility::allDefinedMovieRates() {
    return {kMovieRates.begin(), kMovieRates.end()};
}

// ---- questions

bool QRXTimecodeUtility::videoFrameRateIsNTSC(QRXVideoFrameRate rate) {
    return factsOf(rate).broadcast == Broadcast::ntsc;
}

bool QRXTimecodeUtility::videoFrameRateIsProgressive(QRXVideoFrameRate rate) {
    return factsOf(rate).scan == Scan::progressive;
}

bool QRXTimecodeUtility::videoFrameRateIsInterlaced(QRXVideoFrameRate rate) {
    return factsOf(rate).scan == Scan::interlaced;
}

bool QRXTimecodeUtility::videoFrameRateIsDropFrame(QRXVideoFrameRate rate) {
    return factsOf(rate).dropFrame;
}

bool QRXTimecodeUtility::frameRateIsDrop(QRXVideoFrameRate rate) {
    return factsOf(rate).dropFrame;
}

// ---- equivalents

QRXVideoFrameRate QRXTimecodeUtility::nonDropFrameEquivalentForVideoFrameRate(
    QRXVideoFrameRate rate) {
    return factsOf(rate).nonDrop;
}

QRXVideoFrameRate QRXTimecodeUtility::nonDropFrameRateForDropFrameRate(QRXVideoFrameRate rate) {
    return factsOf(rate).nonDrop;
}

QRXVideoFrameRate QRXTimecodeUtility::dropFrameEquivalentForVideoFrameRate(QRXVideoFrameRate rate) {
    return factsOf(rate).drop;
}

QRXVideoFrameRate QRXTimecodeUtility::dropFrameRateForNonDropFrameRate(QRXVideoFrameRate rate) {
    return factsOf(rate).drop;
}

QRXVideoFrameRate QRXTimecodeUtility::progressiveEquivalentForVideoFrameRate(
    QRXVideoFrameRate rate) {
    return factsOf(rate).progressive;
}

QRXVideoFrameRate QRXTimecodeUtility::interlacedEquivalentForVideoFrameRate(
    QRXVideoFrameRate rate) {
    return factsOf(rate).interlaced;
}

QRXVideoFrameRate QRXTimecodeUtility::palEquivalentForVideoFrameRate(QRXVideoFrameRate rate) {
    // KEPT: 25 and 50i run at the PAL rate and have no PAL equivalent all the same.
    return rate <= QRXVideoFrameRatePAL ? QRXVideoFrameRatePAL : QRXVideoFrameRateUndefined;
}

QRXVideoFrameRate QRXTimecodeUtility::videoFrameRateEquivalentForFrameRate(
    QRXVideoFrameRate rate, QRXViewType basedOnViewType) {
    return basedOnViewType == QRXViewTypeFrame ? factsOf(rate).progressive : rate;
}

// ---- numbers and texts

QRXVideoFrameRate QRXTimecodeUtility::videoFrameRateFromNumericRate(double numericRate) {
    return videoFrameRateFromNumericRate(numericRate, defaultScanType());
}

QRXVideoFrameRate QRXTimecodeUtility::videoFrameRateFromNumericRate(double numericRate,
                                                                    QRXScanType scanType) {
    return answerOr(QRXVideoFrameRateUndefined, "videoFrameRateFromNumericRate", [&] {
        const double rounded = roundedToTwoDecimals(numericRate);
        for (const NumericRate& row : kNumericRates) {
            if (rounded == row.rounded || (numericRate > row.above && numericRate < row.below)) {
                return scanType == QRXScanTypeInterlaced ? row.interlaced : row.progressive;
            }
        }
        return QRXVideoFrameRateUndefined;
    });
}

QRXVideoFrameRate QRXTimecodeUtility::frameRateForDouble(double numericRate) {
    return videoFrameRateFromNumericRate(numericRate, QRXScanTypeProgressive);
}

double QRXTimecodeUtility::numericRateForVideoFrameRate(QRXVideoFrameRate rate) {
    return numericRateForVideoFrameRate(rate, defaultViewType());
}

double QRXTimecodeUtility::numericRateForVideoFrameRate(QRXVideoFrameRate rate,
                                                        QRXViewType viewType) {
    const VideoFrameRateFacts facts = factsOf(rate);
    return viewType == QRXViewTypeFrame ? facts.frameNumeric : facts.numeric;
}

std::string QRXTimecodeUtility::stringRateForVideoFrameRate(QRXVideoFrameRate rate) {
    return answerOr(std::string("0"), "stringRateForVideoFrameRate",
                    [&] { return numberText(numericRateForVideoFrameRate(rate)); });
}

QRXVideoFrameRate QRXTimecodeUtility::videoFrameRateFromFrameRateDescription(
    std::string_view description) {
    return answerOr(QRXVideoFrameRateUndefined, "videoFrameRateFromFrameRateDescription", [&] {
        const std::string text = trimBlanks(description);
        for (const DescriptionPrefix& row : kDescriptionPrefixes) {
            if (beginsWith(text, row.prefix)) return row.rate;
        }
        return QRXVideoFrameRateUndefined;
    });
}

QRXVideoFrameRate QRXTimecodeUtility::videoFrameRateFromFrameRateDescription(
    std::string_view description, QRXScanType scanType) {
    const QRXVideoFrameRate rate = videoFrameRateFromFrameRateDescription(description);
    if (scanType == QRXScanTypeInterlaced && videoFrameRateIsProgressive(rate)) {
        return interlacedEquivalentForVideoFrameRate(rate);
    }
    if (scanType == QRXScanTypeProgressive) return progressiveEquivalentForVideoFrameRate(rate);
    return rate;
}

double QRXTimecodeUtility::adjustedFrameRate(double /*frameRate*/, bool /*forDropFrame*/) {
    return 0.0;  // KEPT: never filled in; hosts know it as 0
}

// ---- the older definitions

QRXVideoFrameRate QRXTimecodeUtility::convertOldFrameRateDefinition(std::int32_t definition) {
    return factsOfDefinition(definition).rate;
}

QRXFrameRateDefinition QRXTimecodeUtility::convertVideoFrameRateDefinitionToOld(
    QRXVideoFrameRate rate) {
    const auto* const found = std::find_if(
        kOldFrameRateSearchOrder.begin(), kOldFrameRateSearchOrder.end(),
        [rate](QRXFrameRateDefinition old) { return factsOfDefinition(old).rate == rate; });
    return found == kOldFrameRateSearchOrder.end() ? QRXFrameRateDefinitionUndefined : *found;
}

QRXFrameRateDefinition QRXTimecodeUtility::movieRateFromString(std::optional<std::string_view> text,
                                                               bool withDropFrame) {
    if (!text) return QRXFrameRateDefinitionUndefined;
    const auto* const found =
        std::find_if(std::begin(kMovieRateTexts), std::end(kMovieRateTexts),
                     [&](const MovieRateText& row) { return contains(*text, row.text); });
    if (found == std::end(kMovieRateTexts)) return QRXFrameRateDefinitionUndefined;
    return withDropFrame ? found->drop : found->nonDrop;
}

QRXFrameRateDefinition QRXTimecodeUtility::movieRateFromNumber(double number) {
    return answerOr(QRXFrameRateDefinitionUndefined, "movieRateFromNumber", [&] {
        const std::string text = numberText(number);
        for (const MovieRatePrefix& row : kMovieRatePrefixes) {
            if (beginsWith(text, row.prefix)) return row.definition;
        }
        return QRXFrameRateDefinitionUndefined;
    });
}

std::string QRXTimecodeUtility::movieRateFromRateDefinition(std::int32_t definition) {
    return std::string(factsOfDefinition(definition).rateString);
}

std::int32_t QRXTimecodeUtility::numericMovieRateFromRateDefinitions(std::int32_t definition) {
    return factsOfDefinition(definition).numeric;
}

}  // namespace qrx
