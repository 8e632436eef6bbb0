#pragma once

#include <span>
#include <string_view>

#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {

/// What the AVCHD cards of all makers have in common.
///
///     <card>/PRIVATE/AVCHD/BDMV/STREAM/00001.MTS     one clip
///     <card>/PRIVATE/AVCHD/BDMV/CLIPINF/00001.CPI    its clip information
///     <card>/PRIVATE/AVCHD/BDMV/PLAYLIST/            playlists
///     <card>/PRIVATE/AVCHD/BDMV/INDEX.BDM, MOVIEOBJ.BDM
///
/// A clip is recognised by its path alone; it is not opened. This class claims clips of every maker
/// and stands in none of the aggregate's lists; its three subclasses share the clips out. Frame
/// rate, poster and the rest are the base object's.
class QRXAVCHDUtility : public QRXHDMediaVolumeUtilityObject {
public:
    [[nodiscard]] static std::unique_ptr<QRXAVCHDUtility> utility();
    [[nodiscard]] static QRXAVCHDUtility& sharedInstance();

    /// 16: no card is of this class.
    [[nodiscard]] std::uint64_t volumeType() const override { return kNoDefinedVolume; }
    [[nodiscard]] std::string volumeTitle() const override { return "AVCHD"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    /// Whether `drive` is a removable drive and holds every item of driveItems().
    [[nodiscard]] bool drivePathMatchesVolumeStructure(const FilePath& drive) const override;
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// Everything that is on `drive` goes, entry by entry; no folders are made. Nothing for a drive
    /// that is itself a link.
    [[nodiscard]] std::optional<ResetPlan> resetPlan(const FilePath& drive) const override;
    [[nodiscard]] bool pathContainsVideoFilesMatchingVolumeStructure(
        const FilePath& folder) const override;
    /// The clip information file.
    [[nodiscard]] std::optional<FilePath> metadataFilePathForVideoFile(
        const FilePath& file) const override;
    /// By the number in the file's name.
    [[nodiscard]] FilePaths orderVolumeVideoFiles(const FilePaths& files) const override;

    /// The clip information file: in the folder CLIPINF beside the clip's folder STREAM, the first
    /// whose name contains the clip's name without extension. Nothing when there is none.
    [[nodiscard]] std::optional<FilePath> clipFileForAVCHDVideoFile(const FilePath& file) const;
    /// Nothing: playlists carry no such file.
    [[nodiscard]] std::optional<FilePath> avchdXmlFileFromPlaylistFile(const FilePath& file) const;
    /// What follows the first "value=" (in any case) of a tag, with every "value=" and every double
    /// quote taken out. Nothing without a "value=", and for a value that says UNDEFINED.
    [[nodiscard]] std::optional<std::string> avchdValueFromTag(std::string_view tag) const;

protected:
    /// What a card must hold, from its root, in the order in which it is looked for.
    [[nodiscard]] virtual std::span<const std::string_view> driveItems() const;
};

}  // namespace qrx
