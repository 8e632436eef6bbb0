#pragma once

#include "volumes/QRXQTUtility.h"

namespace qrx {

/// RED One cards. This version claims no file yet: the list of checks is empty.
class QRXREDOneUtility : public QRXQTUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXREDOneUtility> volumeUtility();
    [[nodiscard]] static QRXREDOneUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 2; }
    [[nodiscard]] std::string volumeTitle() const override { return "RED One"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
};

}  // namespace qrx
