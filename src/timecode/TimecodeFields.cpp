#include "timecode/TimecodeFields.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "foundation/Text.h"
#include "foundation/Utf8.h"

namespace qrx {

namespace {

constexpr std::string_view kForm = "dd:dd:dd.dd";  // "d" a digit, "." either separator
static_assert(kForm.size() == kTimecodeLength);
static_assert(kForm[kFramesSeparatorIndex] == '.');

bool fits(char character, char form) {
    switch (form) {
        case 'd':
            return character >= '0' && character <= '9';
        case '.':
            return character == kNonDropFrameSeparator || character == kDropFrameSeparator;
        default:
            return character == form;
    }
}

}  // namespace

bool hasTimecodeForm(std::string_view timecode) {
    return std::equal(timecode.begin(), timecode.end(), kForm.begin(), kForm.end(), fits);
}

std::optional<std::string> charactersAt(std::string_view text, std::size_t index,
                                        std::size_t count) {
    if (isAscii(text)) {
        if (text.size() < index || text.size() - index < count) return std::nullopt;
        return std::string(text.substr(index, count));
    }
    const std::u16string units = utf16Units(text);
    if (units.size() < index || units.size() - index < count) return std::nullopt;
    return fromUtf16Units(std::u16string_view(units).substr(index, count));
}

std::optional<TimecodeFields> fieldsOf(std::string_view timecode) {
    const auto hours = charactersAt(timecode, 0, 2);
    const auto minutes = charactersAt(timecode, 3, 2);
    const auto seconds = charactersAt(timecode, 6, 2);
    const auto frames = charactersAt(timecode, 9, 2);
    if (!hours || !minutes || !seconds || !frames) return std::nullopt;
    return TimecodeFields{int32Value(*hours), int32Value(*minutes), int32Value(*seconds),
                          int32Value(*frames)};
}

std::string segmentText(std::int32_t number) {
    const std::string digits = std::to_string(number);
    return number > 9 ? digits : "0" + digits;
}

std::string timecodeText(const TimecodeFields& fields, bool dropFrame) {
    return segmentText(fields.hours) + ":" + segmentText(fields.minutes) + ":" +
           segmentText(fields.seconds) + separatorFor(dropFrame) + segmentText(fields.frames);
}

std::int32_t truncated(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value)) return 0;
    if (value >= static_cast<double>(Limits::max())) return Limits::max();
    if (value <= static_cast<double>(Limits::min())) return Limits::min();
    return static_cast<std::int32_t>(value);
}

std::int32_t saturated(std::int64_t value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

}  // namespace qrx
