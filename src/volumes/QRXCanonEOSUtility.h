#pragma once

#include "volumes/QRXQTUtility.h"

namespace qrx {

/// Canon EOS cards. This version claims no file yet: the list of checks is empty.
class QRXCanonEOSUtility : public QRXQTUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXCanonEOSUtility> volumeUtility();
    [[nodiscard]] static QRXCanonEOSUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 8; }
    [[nodiscard]] std::string volumeTitle() const override { return "Canon EOS"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
};

}  // namespace qrx
