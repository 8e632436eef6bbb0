#pragma once

#include "volumes/QRXXDCAMUtility.h"

namespace qrx {

/// JVC cards with MP4 clips. This version claims no file yet: the list of checks is empty.
class QRXJVCMP4Utility : public QRXXDCAMUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXJVCMP4Utility> volumeUtility();
    [[nodiscard]] static QRXJVCMP4Utility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 6; }
    [[nodiscard]] std::string volumeTitle() const override { return "JVC-MP4"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
};

}  // namespace qrx
