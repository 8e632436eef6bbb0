#pragma once

#include "volumes/QRXMXFUtility.h"

namespace qrx {

/// Canon XF cards. This version claims no file yet: the list of checks is empty.
class QRXCanonXFUtility : public QRXMXFUtility {
public:
    [[nodiscard]] static std::unique_ptr<QRXCanonXFUtility> utility();
    [[nodiscard]] static QRXCanonXFUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 10; }
    [[nodiscard]] std::string volumeTitle() const override { return "Canon XF"; }
    [[nodiscard]] std::span<const StructureCheck> structureChecks() const override;
};

}  // namespace qrx
