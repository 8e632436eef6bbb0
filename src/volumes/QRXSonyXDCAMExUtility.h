#pragma once

#include "volumes/QRXXDCAMUtility.h"

namespace qrx {

/// Sony XDCAM EX cards.
///
///     <card>/BPAV/CLPR/708_0001_01/708_0001_01.MP4       one clip, or one piece of a take
///     <card>/BPAV/CLPR/708_0001_01/708_0001_01M01.XML    its sidecar
///     <card>/BPAV/TAKR/                                  takes
///     <card>/BPAV/CUEUP.XML, MEDIAPRO.XML                the card's indexes
///
/// Recognised by path alone.
class QRXSonyXDCAMExUtility : public QRXXDCAMUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXSonyXDCAMExUtility> volumeUtility();
    [[nodiscard]] static QRXSonyXDCAMExUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 3; }
    [[nodiscard]] std::string volumeTitle() const override { return "Sony XDCAM EX"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    [[nodiscard]] bool drivePathMatchesVolumeStructure(const FilePath& drive) const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// The folders of clips and takes are made anew, the backup index goes, and the indexes lose
    /// their entries. Nothing for a drive whose folder BPAV is missing or a link.
    [[nodiscard]] std::optional<ResetPlan> resetPlan(const FilePath& drive) const override;
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    [[nodiscard]] bool clipSpanningSupported() const override { return true; }
    /// By name, whatever its case.
    [[nodiscard]] FilePaths sortSpannedClipSeries(const FilePaths& files) const override;
    /// The first 8 characters of the name; nothing for a shorter name.
    [[nodiscard]] std::optional<std::string> spanPartnerIdentifierForPath(
        const FilePath& file) const override;
    /// Two files or more, all clips of an EX card with the same first 8 characters.
    [[nodiscard]] bool filesArePartOfTheSameSpanSeries(const FilePaths& files) const override;
    /// By the second, then by the third number between the "_"; as the base object where a name
    /// has fewer.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;
    /// The folder that holds the clip's folder.
    [[nodiscard]] std::string volumePartnerIdentifierForFilePath(
        const FilePath& file) const override;
    [[nodiscard]] bool filePathsAreVolumeSiblings(const FilePaths& files) const override;
};

}  // namespace qrx
