#pragma once

#include "volumes/QRXAVCHDUtility.h"

namespace qrx {

/// Canon AVCHD cards.
///
///     <card>/PRIVATE/AVCHD/BDMV/STREAM/00001.MTS     one clip
///     <card>/PRIVATE/AVCHD/CANON/                    what tells the card from the other makers'
///
/// Recognised by the path and by that folder. KEPT: the drive test does not look for it, so that a
/// formatted card, which has none yet, passes.
class QRXCanonAVCHDUtility : public QRXAVCHDUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXCanonAVCHDUtility> utility();
    [[nodiscard]] static QRXCanonAVCHDUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 9; }
    [[nodiscard]] std::string volumeTitle() const override { return "Canon AVCHD"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
    [[nodiscard]] std::optional<std::string> rootOfUniquePathIdenifier() const override;
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
};

}  // namespace qrx
