#pragma once

#include "volumes/QRXMXFUtility.h"

namespace qrx {

/// Panasonic P2 cards. This version claims no file yet: the list of checks is empty.
class QRXPanasonicP2Utility : public QRXMXFUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXPanasonicP2Utility> utility();
    [[nodiscard]] static QRXPanasonicP2Utility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 0; }
    [[nodiscard]] std::string volumeTitle() const override { return "Panasonic P2"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
};

}  // namespace qrx
