#include "volumes/QRXHDFFmpegUtility.h"

#include <array>
#include <string_view>

#include "foundation/NeutralAnswer.h"
#include "foundation/SharedInstance.h"
#include "readers/QRXFFmpegTerminalWrapper.h"
#include "timecode/QRXTimecodeUtility.h"

namespace qrx {

namespace {

/// Always in an exact examination.
CheckVerdict isWorthTheTool(const QRXHDMediaVolumeUtilityObject& utility, ExaminedPath& path) {
    return passesIf(path.examination() == Examination::exact ||
                    utility.filePathExtensionIsValid(path.path()));
}

CheckVerdict passesIfReported(ExaminedPath& path, std::string_view identifier) {
    return passesIf(path.ffmpegMetadata().valueForKey(identifier).has_value());
}

CheckVerdict hasDuration(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIfReported(path, QRXMediaMetadataVideoDurationKey);
}

CheckVerdict hasBitRate(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIfReported(path, QRXMediaMetadataVideoBitRateKey);
}

CheckVerdict hasVideoCodec(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIfReported(path, QRXMediaMetadataVideoCodecTitleKey);
}

constexpr std::array kReportChecks{
    StructureCheck{"the file's name has no extension of files without video", isWorthTheTool},
    StructureCheck{"the ffmpeg tool reports a duration", hasDuration},
    StructureCheck{"the ffmpeg tool reports a bit rate", hasBitRate},
    StructureCheck{"the ffmpeg tool reports a video codec", hasVideoCodec},
};

}  // namespace

std::unique_ptr<QRXHDFFmpegUtility> QRXHDFFmpegUtility::volumeUtility() {
    return std::make_unique<QRXHDFFmpegUtility>();
}

QRXHDFFmpegUtility& QRXHDFFmpegUtility::sharedInstance() {
    return sharedInstanceOf<QRXHDFFmpegUtility>();
}

std::span<const StructureCheck> QRXHDFFmpegUtility::structureChecks() const {
    return kReportChecks;
}

QRXVideoFrameRate QRXHDFFmpegUtility::framerateForVideoFile(const FilePath& file) const {
    const auto rate =
        metadataWrapperForVideoFilePath(file).valueForKey(QRXMediaMetadataVideoFrameRate);
    return rate ? QRXTimecodeUtility::videoFrameRateFromFrameRateDescription(*rate)
                : QRXVideoFrameRateUndefined;
}

QRXMetadataWrapper QRXHDFFmpegUtility::metadataWrapperForVideoFilePath(const FilePath& file) const {
    return answerOr(QRXMetadataWrapper(), "metadataWrapperForVideoFilePath",
                    [&] { return QRXFFmpegTerminalWrapper().metadataWrapperForVideoFile(file); });
}

}  // namespace qrx
