#pragma once

#include "volumes/QRXAVCHDUtility.h"

namespace qrx {

/// Sony NXCAM cards.
///
///     <card>/AVCHD/BDMV/STREAM/00001.MTS     one clip
///     <card>/AVCHD/BDMV/CLIPINF/00001.CPI    its clip information; holds the start timecode
///     <card>/AVCHD/BDMV/PLAYLIST/            playlists
///     <card>/AVCHD/BDMV/INDEX.BDM, MOVIEOBJ.BDM
///
/// Recognised by path alone: the layout of the other makers without the folder PRIVATE above.
class QRXSonyAVCHDUtility : public QRXAVCHDUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXSonyAVCHDUtility> utility();
    [[nodiscard]] static QRXSonyAVCHDUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 5; }
    [[nodiscard]] std::string volumeTitle() const override { return "Sony NXCAM AVCHD"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// From the clip information file; "00:00:00:00" when there is none or it holds no timecode.
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;

    /// The start timecode in a clip information file; nothing when the file cannot be read or holds
    /// none.
    [[nodiscard]] std::optional<std::string> extractStartTimecodeFromCPIFile(
        const FilePath& file) const;

protected:
    [[nodiscard]] std::span<const std::string_view> driveItems() const override;
};

}  // namespace qrx
