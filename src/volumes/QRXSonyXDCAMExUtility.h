#pragma once

#include "volumes/QRXXDCAMUtility.h"

namespace qrx {

/// Sony XDCAM EX cards. This version claims no file yet: the list of checks is empty.
class QRXSonyXDCAMExUtility : public QRXXDCAMUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXSonyXDCAMExUtility> volumeUtility();
    [[nodiscard]] static QRXSonyXDCAMExUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 3; }
    [[nodiscard]] std::string volumeTitle() const override { return "Sony XDCAM EX"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
};

}  // namespace qrx
