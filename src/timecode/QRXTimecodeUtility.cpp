#include "timecode/QRXTimecodeUtility.h"

#include "timecode/TimecodeFields.h"

namespace qrx {

namespace {
constexpr float kDefaultFramesPerSecond = 30.0F;
}  // namespace

QRXTimecodeUtility::QRXTimecodeUtility()
    : QRXTimecodeUtility(kDefaultFramesPerSecond, defaultTimecode()) {}

QRXTimecodeUtility::QRXTimecodeUtility(float frameRate, std::string_view startTimecode)
    : framesPerSecond_(frameRate),
      frameOffset_(0),
      isDropFrame_(false),
      startTimecode_(startTimecode) {
    const QRXVideoFrameRate rate =
        videoFrameRateFromNumericRate(static_cast<double>(frameRate), QRXScanTypeProgressive);
    isDropFrame_ = videoFrameRateIsDropFrame(rate);
    frameOffset_ = framesRepresentedByTimecode(startTimecode_, rate);
}

QRXTimecodeUtility QRXTimecodeUtility::timecodeUtility() {
    return {};
}

}  // namespace qrx
