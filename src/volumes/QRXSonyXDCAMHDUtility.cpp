#include "volumes/QRXSonyXDCAMHDUtility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXSonyXDCAMHDUtility> QRXSonyXDCAMHDUtility::utility() {
    return std::make_unique<QRXSonyXDCAMHDUtility>();
}

QRXSonyXDCAMHDUtility& QRXSonyXDCAMHDUtility::sharedInstance() {
    return sharedInstanceOf<QRXSonyXDCAMHDUtility>();
}

std::span<const StructureCheck> QRXSonyXDCAMHDUtility::structureChecks() const {
    return {};
}

}  // namespace qrx
