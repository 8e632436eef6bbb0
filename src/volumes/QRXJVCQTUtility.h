#pragma once

#include "volumes/QRXQTUtility.h"

namespace qrx {

/// JVC cards with QuickTime clips. This version claims no file yet: the list of checks is empty.
class QRXJVCQTUtility : public QRXQTUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXJVCQTUtility> volumeUtility();
    [[nodiscard]] static QRXJVCQTUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 7; }
    [[nodiscard]] std::string volumeTitle() const override { return "JVC-QuickTime"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
};

}  // namespace qrx
