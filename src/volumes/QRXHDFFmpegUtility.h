#pragma once

#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {

/// The volume of last resort among the movies: any file that the ffmpeg tool can describe as a
/// video, wherever it lies.
///
/// Every question runs the tool once and waits for it; without the tool no file is claimed. The
/// tool is not run on a FIFO, socket or device, nor in a quick examination on a file whose
/// extension is one of files without video.
class QRXHDFFmpegUtility : public QRXHDMediaVolumeUtilityObject {
public:
    [[nodiscard]] static std::unique_ptr<QRXHDFFmpegUtility> volumeUtility();
    [[nodiscard]] static QRXHDFFmpegUtility& sharedInstance();
    [[nodiscard]] static std::uint64_t volumeTypeOfClass() { return 13; }

    [[nodiscard]] std::uint64_t volumeType() const override { return volumeTypeOfClass(); }
    [[nodiscard]] std::string volumeTitle() const override { return "General Movies"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    /// From the tool's report; undefined when it names no rate or one that is not known.
    [[nodiscard]] QRXVideoFrameRate framerateForVideoFile(const FilePath& file) const override;
    /// What the tool's report says; a wrapper without any value when there is no report.
    [[nodiscard]] QRXMetadataWrapper metadataWrapperForVideoFilePath(
        const FilePath& file) const override;
};

}  // namespace qrx
