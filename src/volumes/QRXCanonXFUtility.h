#pragma once

#include "volumes/QRXMXFUtility.h"

namespace qrx {

/// Canon XF cards.
///
///     <card>/CONTENTS/CLIPS001/AA0001/AA000101.MXF   one clip
///     <card>/CONTENTS/CLIPS001/AA0001/AA000101.XML   its sidecar
///
/// Recognised by path alone; the file is not opened. Rate, timecode and UMID come from the MXF
/// file.
class QRXCanonXFUtility : public QRXMXFUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXCanonXFUtility> utility();
    [[nodiscard]] static QRXCanonXFUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 10; }
    [[nodiscard]] std::string volumeTitle() const override { return "Canon XF"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// The first XML file of the clip's folder whose name without extension occurs in the clip's
    /// name. Where a file of that name lies in the process's current folder, the bare name.
    [[nodiscard]] std::optional<FilePath> metadataFilePathForVideoFile(
        const FilePath& file) const override;
    /// By the number in the file's name.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;
    /// The folder that holds the clip's folder.
    [[nodiscard]] std::string volumePartnerIdentifierForFilePath(
        const FilePath& file) const override;
    [[nodiscard]] bool filePathsAreVolumeSiblings(const FilePaths& files) const override;
};

}  // namespace qrx
