#include "qrx/ClipInfo.h"

#include <array>

namespace qrx::tool {

std::string rateName(QRXVideoFrameRate rate) {
    static constexpr std::array kNames{"24", "23.976", "PAL", "25", "50i",      "29.97",
                                       "30", "59.94i", "50p", "60", "undefined"};
    static_assert(kNames.size() == QRXVideoFrameRateUndefined + 1);
    return rate < kNames.size() ? kNames.at(rate) : "undefined";
}

ClipInfo infoOf(const FilePath& file, const QRXHDMediaVolumeUtilityObject& utility) {
    return {
        .file = file,
        .volumeTitle = utility.volumeTitle(),
        .volumeType = utility.volumeType(),
        .frameRate = utility.framerateForVideoFile(file),
        .uniqueIdentifier = utility.uniqueIdentifierForVideoFile(file),
        .startTimecode = utility.startTimecodeForVideoFile(file),
        .endTimecode = utility.endTimecodeForVideoFile(file),
        .isDropFrame = utility.videoFileIsDropFrame(file),
        .sidecar = utility.metadataFilePathForVideoFile(file),
        .audioFiles = utility.audioFilesForVideoFile(file),
        .isSpanned = utility.fileIsInASpannedSeries(file),
        .spanKey = utility.spanPartnerIdentifierForPath(file),
        .volumeKey = utility.volumePartnerIdentifierForFilePath(file),
        .metadata = metadataEntries(utility.metadataWrapperForVideoFilePath(file), Entries::found),
    };
}

}  // namespace qrx::tool
