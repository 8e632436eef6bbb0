#pragma once

#include "volumes/QRXMXFUtility.h"
#include "volumes/QRXXDCAMUtility.h"

namespace qrx {

/// Sony XDCAM HD discs and cards.
///
///     <card>/Clip/C0001.MXF       one clip
///     <card>/Clip/C0001M01.XML    its sidecar
///     <card>/Sub/C0001S01.MXF     its proxy
///
/// Recognised by path alone. What the MXF file says goes before what the sidecar says.
class QRXSonyXDCAMHDUtility : public QRXXDCAMUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXSonyXDCAMHDUtility> utility();
    [[nodiscard]] static QRXSonyXDCAMHDUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 4; }
    [[nodiscard]] std::string volumeTitle() const override { return "Sony XDCAM HD"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    /// KEPT: the MXF file's, also when it is undefined; the sidecar's is never reached.
    [[nodiscard]] QRXVideoFrameRate framerateForVideoFile(const FilePath& file) const override;
    [[nodiscard]] std::optional<std::string> uniqueIdentifierForVideoFile(
        const FilePath& file) const override;
    /// The sidecar's where the MXF file's is "00:00:00:00".
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;
    /// The sidecar's, and over it what the MXF record holds.
    [[nodiscard]] QRXMetadataWrapper metadataWrapperForVideoFilePath(
        const FilePath& file) const override;
    /// By the number in the file's name.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;

    // Beyond the protocol.

    /// The proxy of a clip: the first file of the folder in which "/Clip/" is replaced by "/Sub/",
    /// if its path contains the clip's name and its extension is the clip's.
    ///
    /// KEPT: the path of a folder does not end in "/", so a clip directly in Clip has its proxy
    /// sought in Clip; and no file but the first is ever looked at.
    [[nodiscard]] std::optional<FilePath> proxyPathForFullResolutionFile(
        const FilePath& file) const;
    [[nodiscard]] const QRXMXFUtility& mxfUtility() const { return mxfUtility_; }

private:
    QRXMXFUtility mxfUtility_;
};

}  // namespace qrx
