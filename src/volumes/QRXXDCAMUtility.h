#pragma once

#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {

/// What the XDCAM cards have in common; claims nothing itself.
class QRXXDCAMUtility : public QRXHDMediaVolumeUtilityObject {
public:
    [[nodiscard]] static std::unique_ptr<QRXXDCAMUtility> utility();
    [[nodiscard]] static QRXXDCAMUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return kNoDefinedVolume; }
    [[nodiscard]] std::string volumeTitle() const override { return "XDCAM"; }
};

}  // namespace qrx
