#pragma once

#include "volumes/QRXAVCHDUtility.h"

namespace qrx {

/// Panasonic AVCHD cards.
///
///     <card>/PRIVATE/AVCHD/BDMV/STREAM/00001.MTS     one clip
///     <card>/PRIVATE/AVCHD/BDMV/CLIPINF/00001.CPI    its clip information; holds the start
///     timecode
///
/// Recognised by the common AVCHD test alone, so it is asked after the other two makers.
class QRXPanasonicAVCHDUtility : public QRXAVCHDUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXPanasonicAVCHDUtility> utility();
    [[nodiscard]] static QRXPanasonicAVCHDUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 1; }
    [[nodiscard]] std::string volumeTitle() const override { return "Panasonic AVCHD"; }
    [[nodiscard]] std::optional<std::vector<std::string>>
    pathComponentsIndicatingTheVolumeHasBegun() const override;
    /// From the clip information file; "00:00:00:00" when there is none or it holds no timecode.
    [[nodiscard]] std::string startTimecodeForVideoFile(const FilePath& file) const override;
};

}  // namespace qrx
