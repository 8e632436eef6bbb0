#pragma once

#include "volumes/QRXQTUtility.h"

namespace qrx {

/// GoPro cards.
///
///     <card>/DCIM/100GOPRO/GOPR0001.MP4     one clip; the names of all begin with GO
///
/// A clip lies in a folder that stands directly in DCIM, and opens as a movie with a video or a
/// sound track.
class QRXGoProUtility : public QRXQTUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXGoProUtility> volumeUtility();
    [[nodiscard]] static QRXGoProUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 12; }
    [[nodiscard]] std::string volumeTitle() const override { return "GoPro"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    /// A removable drive with a folder DCIM and, anywhere, something whose path ends in GOPRO.
    [[nodiscard]] bool drivePathMatchesVolumeStructure(const FilePath& drive) const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// Whether a folder below DCIM, and one whose path ends in GOPRO, holds an .MP4.
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    /// By the numbers in the names.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;
};

}  // namespace qrx
