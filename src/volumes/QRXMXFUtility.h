#pragma once

#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {

/// MXF files, wherever they lie. This version claims no file yet: the list of checks is empty.
class QRXMXFUtility : public QRXHDMediaVolumeUtilityObject {
public:
    [[nodiscard]] static std::unique_ptr<QRXMXFUtility> utility();
    [[nodiscard]] static QRXMXFUtility& sharedInstance();

    [[nodiscard]] std::uint64_t volumeType() const override { return 14; }
    [[nodiscard]] std::string volumeTitle() const override { return "MXF"; }
};

}  // namespace qrx
