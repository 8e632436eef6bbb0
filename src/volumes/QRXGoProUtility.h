#pragma once

#include "volumes/QRXQTUtility.h"

namespace qrx {

/// GoPro cards. This version claims no file yet: the list of checks is empty.
class QRXGoProUtility : public QRXQTUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXGoProUtility> volumeUtility();
    [[nodiscard]] static QRXGoProUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 12; }
    [[nodiscard]] std::string volumeTitle() const override { return "GoPro"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
};

}  // namespace qrx
