#include <algorithm>
#include <ctime>

#include "foundation/NeutralAnswer.h"
#include "foundation/Text.h"
#include "timecode/QRXTimecodeUtility.h"
#include "timecode/TimecodeFields.h"

namespace qrx {

namespace {

constexpr std::size_t kDigitsOfATimecode = 8;

bool isSeparator(char16_t unit) {
    return unit == kNonDropFrameSeparator || unit == kDropFrameSeparator;
}

std::u16string reversed(std::u16string_view digits, bool dropFrame) {
    // KEPT: the drop-frame separator lands after the first field of the result, not before the last
    // one, so a reversed drop-frame text is no valid timecode.
    const char16_t lastInFront = dropFrame ? u';' : u':';
    std::u16string result(digits.substr(0, 2));
    result.insert(0, u":").insert(0, digits.substr(2, 2));
    result.insert(0, u":").insert(0, digits.substr(4, 2));
    result.insert(0, 1, lastInFront).insert(0, digits.substr(6, 2));
    return result;
}

std::optional<std::tm> localTimeOfDay(std::optional<std::int64_t> secondsSince1970) {
    if (!secondsSince1970) return std::nullopt;
    const auto time = static_cast<std::time_t>(*secondsSince1970);
    std::tm parts{};
    if (::localtime_r(&time, &parts) == nullptr) return std::nullopt;
    return parts;
}

}  // namespace

bool QRXTimecodeUtility::timecodeIsValid(std::string_view timecode) {
    return hasTimecodeForm(timecode);
}

bool QRXTimecodeUtility::isValidTimeCode(std::string_view timecode) {
    return hasTimecodeForm(timecode);
}

bool QRXTimecodeUtility::timecodeHasDropFrameIndicator(std::string_view timecode) {
    return hasTimecodeForm(timecode) && timecode[kFramesSeparatorIndex] == kDropFrameSeparator;
}

bool QRXTimecodeUtility::timecodeIsDropFrame(std::string_view timecode) {
    return answerOr(false, "timecodeIsDropFrame", [&] {
        return charactersAt(timecode, kFramesSeparatorIndex, 1) ==
               std::string(1, kDropFrameSeparator);
    });
}

std::string QRXTimecodeUtility::forceTimecodeToMatchDropFrameFormat(std::string_view timecode,
                                                                    bool dropFrame) {
    std::string forced(timecode);
    if (hasTimecodeForm(timecode)) forced[kFramesSeparatorIndex] = separatorFor(dropFrame);
    return forced;
}

std::string QRXTimecodeUtility::augmentTimecodeDropFrame(std::string_view timecode,
                                                         bool dropFrameStatus) {
    return forceTimecodeToMatchDropFrameFormat(timecode, dropFrameStatus);
}

std::optional<std::string> QRXTimecodeUtility::reverseTimecodeString(std::string_view timecode) {
    using Answer = std::optional<std::string>;
    return answerOr(Answer{}, "reverseTimecodeString", [&]() -> Answer {
        std::u16string digits = utf16Units(timecode);
        const bool dropFrame = digits.find(u';') != std::u16string::npos;
        digits.erase(std::remove_if(digits.begin(), digits.end(), isSeparator), digits.end());
        if (digits.size() != kDigitsOfATimecode) return std::nullopt;
        return fromUtf16Units(reversed(digits, dropFrame));
    });
}

std::string QRXTimecodeUtility::dateToTimecode(std::optional<std::int64_t> secondsSince1970) {
    return answerOr(defaultTimecode(), "dateToTimecode", [&] {
        const auto parts = localTimeOfDay(secondsSince1970);
        if (!parts) return defaultTimecode();
        return timecodeText({parts->tm_hour, parts->tm_min, parts->tm_sec, 0}, false);
    });
}

std::string QRXTimecodeUtility::timecodeFromDate(std::optional<std::int64_t> secondsSince1970) {
    return dateToTimecode(secondsSince1970);
}

std::string QRXTimecodeUtility::timecodeFromHours(std::int32_t hours, std::int32_t minutes,
                                                  std::int32_t seconds, std::int32_t frames,
                                                  bool dropFrame) {
    return timecodeText({hours, minutes, seconds, frames}, dropFrame);
}

std::string QRXTimecodeUtility::timecodeSegmentFromInteger(std::int32_t number) {
    return segmentText(number);
}

std::string QRXTimecodeUtility::formatTimeCodeSegmentFromInteger(std::int32_t number) {
    return segmentText(number);
}

}  // namespace qrx
