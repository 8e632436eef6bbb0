#include "volumes/JvcTimecode.h"

#include "foundation/Text.h"
#include "readers/QRXXmlUtility.h"

namespace qrx {

namespace {

constexpr std::size_t kDigits = 8;
constexpr std::size_t kTimecodeLength = 11;

/// "01000000" as "01:00:00;00".
std::u16string separated(std::u16string_view digits, char16_t beforeFrames) {
    std::u16string timecode(digits.substr(0, 2));
    timecode.append(u":").append(digits.substr(2, 2));
    timecode.append(u":").append(digits.substr(4, 2));
    timecode.append(1, beforeFrames).append(digits.substr(6, 2));
    return timecode;
}

}  // namespace

std::optional<std::string> timecodeInJvcTag(std::string_view tag) {
    const auto value = QRXXmlUtility::stripValueFromInfo(std::string(tag), "startTc=");
    if (!value) return std::nullopt;
    std::u16string timecode = utf16Units(trimBlanks(trimLetters(*value)));
    if (timecode.size() == kDigits) {
        const bool saysDropFrame = contains(tag, R"(dropFrame="true")");
        timecode = separated(timecode, saysDropFrame ? u':' : u';');
    }
    if (timecode.size() != kTimecodeLength) return std::nullopt;
    return fromUtf16Units(timecode);
}

}  // namespace qrx
