#pragma once

#include "volumes/QRXQTUtility.h"

namespace qrx {

/// JVC cards with QuickTime clips.
///
///     <card>/PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MOV     one clip, or one piece of a long one
///     <card>/PRIVATE/JVC/CQAV/INFO/ABCD0001_01.XML     its sidecar
///     <card>/PRIVATE/JVC/CQAV/MEDIAINF.XML, .BAK       the card's index
///
/// Recognised by path alone; no movie is opened. Timecode, drop frame and unique identifier come
/// from the sidecar: <TimeCode startTc="01000000" dropFrame="true">, <TargetClip name=...
/// umid=...>.
class QRXJVCQTUtility : public QRXQTUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXJVCQTUtility> volumeUtility();
    [[nodiscard]] static QRXJVCQTUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 7; }
    [[nodiscard]] std::string volumeTitle() const override { return "JVC-QuickTime"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    /// A removable drive that holds the two folders and the two index files.
    [[nodiscard]] bool drivePathMatchesVolumeStructure(const FilePath& drive) const override;
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// REMOVES everything but the card's folders, wherever they stand, and the index, from which
    /// the clips go. A drive that is a link is refused.
    /// KEPT: the index's copy, MEDIAINF.BAK, goes too, so the drive test says no until the camera
    /// has made it anew.
    [[nodiscard]] std::optional<ResetPlan> resetPlan(const FilePath& drive) const override;
    /// Whether the clips' folder of a card holds a .MOV.
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    [[nodiscard]] std::optional<FilePath> metadataFilePathForVideoFile(
        const FilePath& file) const override;
    /// The UMID that the sidecar states; the file's name without extension when there is none.
    [[nodiscard]] std::optional<std::string> uniqueIdentifierForVideoFile(
        const FilePath& file) const override;
    /// KEPT: ";" before the frames when the sidecar does not say dropFrame="true", ":" when it
    /// does.
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;
    /// KEPT: yes when the sidecar's <TimeCode> does not say "true".
    [[nodiscard]] bool videoFileIsDropFrame(const FilePath& file) const override;
    [[nodiscard]] bool clipSpanningSupported() const override { return true; }
    /// The name up to its first "_".
    [[nodiscard]] std::optional<std::string> spanPartnerIdentifierForPath(
        const FilePath& file) const override;
    /// By the number behind the first "_" of the name; unchanged when a name has none.
    [[nodiscard]] FilePaths sortSpannedClipSeries(const FilePaths& files) const override;
    /// Whether at least two files lie where clips lie and share the name up to the first "_".
    [[nodiscard]] bool filesArePartOfTheSameSpanSeries(const FilePaths& files) const override;
    /// By clip number (the last four characters before the first "_"), then by piece; by creation
    /// date when a name has neither.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;
};

}  // namespace qrx
