#pragma once

#include "volumes/QRXQTUtility.h"

namespace qrx {

/// RED One cards.
///
///     <card>/A001.RDM/                            one reel
///       A001_C001.RDC/                            one clip
///         A001_C001_001.R3D                       its raw picture, in segments
///         A001_C001_F.mov                         a movie that refers to it; up to four
///
/// What is claimed are the reference movies, by path alone; no file is opened.
class QRXREDOneUtility : public QRXQTUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXREDOneUtility> volumeUtility();
    [[nodiscard]] static QRXREDOneUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 2; }
    [[nodiscard]] std::string volumeTitle() const override { return "RED One"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    /// A removable drive that holds, in upper case, an .RDM folder with something .RDC in it.
    [[nodiscard]] bool drivePathMatchesVolumeStructure(const FilePath& drive) const override;
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// REMOVES the item at `drive` itself with everything in it. Of a mounted card all that is on
    /// it goes, and the answer is NO, since the mount point stays.
    [[nodiscard]] std::optional<ResetPlan> resetPlan(const FilePath& drive) const override;
    /// Whether a folder whose path ends in .RDC holds an .R3D.
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    /// The folder that holds the reel's folder.
    [[nodiscard]] std::string volumePartnerIdentifierForFilePath(
        const FilePath& file) const override;
    [[nodiscard]] bool filePathsAreVolumeSiblings(const FilePaths& files) const override;
    /// The raw file that stands beside the reference movie; the movie itself when there is none.
    [[nodiscard]] FilePath sourceFilePathForReferenceFile(const FilePath& file) const override;

    /// The first entry of the folder, in name order, whose name ends in ".R3D" or ".r3d"; nothing
    /// when there is none or the folder cannot be listed.
    [[nodiscard]] std::optional<FilePath> pathToR3DFileinDirectory(const FilePath& directory) const;
};

}  // namespace qrx
