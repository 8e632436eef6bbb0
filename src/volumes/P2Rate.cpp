#include "volumes/P2Rate.h"

#include <vector>

#include "foundation/QRXFileSystemUtility.h"
#include "foundation/Text.h"
#include "timecode/QRXTimecodeUtility.h"

namespace qrx {

namespace {

QRXVideoFrameRate rateOf(double framesPerSecond) {
    return QRXTimecodeUtility::videoFrameRateFromFrameRateDescription(
        fixedDecimals(framesPerSecond, 2));
}

QRXVideoFrameRate rateOfEditUnit(const std::string& editUnit) {
    const std::vector<std::string> parts = split(editUnit, "/");
    if (parts.size() < 2) return QRXVideoFrameRateUndefined;
    const double units = doubleValue(parts[0]);
    const double perSeconds = doubleValue(parts[1]);
    if (units == 0 || perSeconds == 0) return QRXVideoFrameRateUndefined;
    return rateOf(perSeconds / units);
}

}  // namespace

QRXVideoFrameRate p2FrameRate(const std::optional<std::string>& editUnit,
                              const std::optional<std::string>& frameRate) {
    if (editUnit) return rateOfEditUnit(*editUnit);
    if (!frameRate) return QRXVideoFrameRateUndefined;
    const auto& files = QRXFileSystemUtility::sharedInstance();
    return rateOf(doubleValue(files.removeNonNumericsFromString(*frameRate, true)));
}

}  // namespace qrx
