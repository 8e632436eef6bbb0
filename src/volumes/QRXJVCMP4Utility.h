#pragma once

#include "volumes/QRXXDCAMUtility.h"

namespace qrx {

/// JVC cards with MP4 clips: an XDCAM EX card inside PRIVATE/JVC.
///
///     <card>/PRIVATE/JVC/BPAV/CLPR/ABCD0001_01/ABCD0001_01.MP4       one clip, or one piece
///     <card>/PRIVATE/JVC/BPAV/CLPR/ABCD0001_01/ABCD0001_01M01.XML    its sidecar
///     <card>/PRIVATE/JVC/BPAV/TAKR/                                  takes
///     <card>/PRIVATE/JVC/BPAV/CUEUP.XML, MEDIAPRO.XML                the card's indexes
///
/// Recognised by path alone.
class QRXJVCMP4Utility : public QRXXDCAMUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXJVCMP4Utility> volumeUtility();
    [[nodiscard]] static QRXJVCMP4Utility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 6; }
    [[nodiscard]] std::string volumeTitle() const override { return "JVC-MP4"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    [[nodiscard]] bool drivePathMatchesVolumeStructure(const FilePath& drive) const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// Everything on the whole drive goes but the card's own folders and indexes, and the indexes
    /// lose their entries. Nothing for a drive that is itself a link.
    [[nodiscard]] std::optional<ResetPlan> resetPlan(const FilePath& drive) const override;
    /// KEPT: never on ordinary trees, for the folder that is sought would have to end in "/".
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    [[nodiscard]] bool clipSpanningSupported() const override { return true; }
    /// By name, whatever its case.
    [[nodiscard]] FilePaths sortSpannedClipSeries(const FilePaths& files) const override;
    /// The name up to its first "_"; the whole name, extension included, without one.
    [[nodiscard]] std::optional<std::string> spanPartnerIdentifierForPath(
        const FilePath& file) const override;
    /// Two files or more, all clips of such a card with the same name up to the first "_".
    [[nodiscard]] bool filesArePartOfTheSameSpanSeries(const FilePaths& files) const override;
    /// By the last four characters before the "_", then by the number behind it; as the base object
    /// where a name lacks them.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;
    /// The folder that holds the clip's folder.
    [[nodiscard]] std::string volumePartnerIdentifierForFilePath(
        const FilePath& file) const override;
    [[nodiscard]] bool filePathsAreVolumeSiblings(const FilePaths& files) const override;
};

}  // namespace qrx
