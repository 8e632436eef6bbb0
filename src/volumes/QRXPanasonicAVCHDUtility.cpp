#include "volumes/QRXPanasonicAVCHDUtility.h"

#include "foundation/NeutralAnswer.h"
#include "foundation/SharedInstance.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/ClipInformation.h"

namespace qrx {

std::unique_ptr<QRXPanasonicAVCHDUtility> QRXPanasonicAVCHDUtility::utility() {
    return std::make_unique<QRXPanasonicAVCHDUtility>();
}

QRXPanasonicAVCHDUtility& QRXPanasonicAVCHDUtility::sharedInstance() {
    return sharedInstanceOf<QRXPanasonicAVCHDUtility>();
}

std::optional<std::vector<std::string>>
QRXPanasonicAVCHDUtility::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::vector<std::string>{"/PRIVATE/AVCHD/BDMV/"};
}

std::string QRXPanasonicAVCHDUtility::startTimecodeForVideoFile(const FilePath& file) const {
    std::string unknown = QRXTimecodeUtility::defaultTimecode();
    return answerOr(unknown, "startTimecodeForVideoFile", [&] {
        const auto information = clipFileForAVCHDVideoFile(file);
        if (!information) return unknown;
        const auto bytes = fourBytesBeforeEnd(*information, kPanasonicTimecodeDistance);
        return bytes ? panasonicTimecode(*bytes).value_or(unknown) : unknown;
    });
}

}  // namespace qrx
