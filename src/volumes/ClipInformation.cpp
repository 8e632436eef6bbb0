#include "volumes/ClipInformation.h"

#include <string_view>

#include "foundation/QRXConversionUtility.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/Text.h"
#include "readers/ByteSource.h"
#include "timecode/QRXTimecodeUtility.h"

namespace qrx {

namespace {

// Values of the frames field, in decimal, that are not frames but flags and what stands on them.
// KEPT: all from 30 to 40 mean no frames; hosts have always been told so.
constexpr std::int32_t kFirstFlaggedFrames = 30;
constexpr std::int32_t kFlag = 40;
constexpr std::size_t kFramesPosition = 9;

std::optional<std::string> validReversed(std::string_view digits) {
    auto timecode = QRXTimecodeUtility::reverseTimecodeString(digits);
    if (!timecode || !QRXTimecodeUtility::isValidTimeCode(*timecode)) return std::nullopt;
    return timecode;
}

}  // namespace

std::optional<TimecodeBytes> fourBytesBeforeEnd(const FilePath& file, std::uint64_t distance) {
    const FileByteSource source(file);
    TimecodeBytes bytes{};
    if (!source.isOpen() || source.size() < distance) return std::nullopt;
    if (source.read(source.size() - distance, bytes) != bytes.size()) return std::nullopt;
    return bytes;
}

std::optional<std::string> panasonicTimecode(const TimecodeBytes& bytes) {
    const std::string digits = QRXFileSystemUtility::sharedInstance().removeNonNumericsFromString(
        QRXConversionUtility::dataToString(bytes), false);
    return validReversed(digits);
}

std::optional<std::string> sonyTimecode(const TimecodeBytes& bytes) {
    const std::string digits = QRXConversionUtility::dataToString(bytes);
    auto timecode = validReversed(digits);
    const std::int32_t flagged = int32Value(std::string_view(digits).substr(0, 2));
    if (!timecode || flagged < kFirstFlaggedFrames) return timecode;
    const std::int32_t frames = flagged <= kFlag ? 0 : flagged - kFlag;
    const std::string text = QRXTimecodeUtility::timecodeSegmentFromInteger(frames);
    return timecode->replace(kFramesPosition, 2, text);
}

}  // namespace qrx
