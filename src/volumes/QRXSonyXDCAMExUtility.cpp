#include "volumes/QRXSonyXDCAMExUtility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXSonyXDCAMExUtility> QRXSonyXDCAMExUtility::volumeUtility() {
    return std::make_unique<QRXSonyXDCAMExUtility>();
}

QRXSonyXDCAMExUtility& QRXSonyXDCAMExUtility::sharedInstance() {
    return sharedInstanceOf<QRXSonyXDCAMExUtility>();
}

std::span<const StructureCheck> QRXSonyXDCAMExUtility::structureChecks() const {
    return {};
}

}  // namespace qrx
