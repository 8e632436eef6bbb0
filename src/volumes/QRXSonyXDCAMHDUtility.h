#pragma once

#include "volumes/QRXXDCAMUtility.h"

namespace qrx {

/// Sony XDCAM HD cards. This version claims no file yet: the list of checks is empty.
class QRXSonyXDCAMHDUtility : public QRXXDCAMUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXSonyXDCAMHDUtility> utility();
    [[nodiscard]] static QRXSonyXDCAMHDUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 4; }
    [[nodiscard]] std::string volumeTitle() const override { return "Sony XDCAM HD"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
};

}  // namespace qrx
