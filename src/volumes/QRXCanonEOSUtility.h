#pragma once

#include "volumes/QRXQTUtility.h"

namespace qrx {

/// Canon EOS cards.
///
///     <card>/DCIM/100CANON/MVI_0001.MOV     one clip
///     <card>/DCIM/100CANON/MVI_0001.THM     its sidecar, a small picture
///     <card>/MISC/
///
/// Recognised by path alone: any .MOV below a folder DCIM. The camera writes no timecode; a clip
/// starts at the time of day when its file was created.
class QRXCanonEOSUtility : public QRXQTUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXCanonEOSUtility> volumeUtility();
    [[nodiscard]] static QRXCanonEOSUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 8; }
    [[nodiscard]] std::string volumeTitle() const override { return "Canon EOS"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    /// A removable drive that holds DCIM and MISC.
    [[nodiscard]] bool drivePathMatchesVolumeStructure(const FilePath& drive) const override;
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// REMOVES every file and link below a folder DCIM; all folders stay, and what lies elsewhere.
    /// A drive that is a link is refused.
    [[nodiscard]] std::optional<ResetPlan> resetPlan(const FilePath& drive) const override;
    /// KEPT: never.
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    /// The .THM file of the clip's name beside it.
    [[nodiscard]] std::optional<FilePath> metadataFilePathForVideoFile(
        const FilePath& file) const override;
    /// KEPT: the name of the folder in which cards are mounted, the same for all clips.
    [[nodiscard]] std::optional<std::string> uniqueIdentifierForVideoFile(
        const FilePath& file) const override;
    /// Time of day of the file's creation, in the local zone; frames 00.
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;
    /// By the number behind the first "_" of the name; by creation date when one has none.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;
    /// The folder in which the card is mounted; the text before "DCIM/" when there is none.
    [[nodiscard]] std::string volumePartnerIdentifierForFilePath(
        const FilePath& file) const override;
    [[nodiscard]] bool filePathsAreVolumeSiblings(const FilePaths& files) const override;
};

}  // namespace qrx
