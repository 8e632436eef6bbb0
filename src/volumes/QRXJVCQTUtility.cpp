#include "volumes/QRXJVCQTUtility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXJVCQTUtility> QRXJVCQTUtility::volumeUtility() {
    return std::make_unique<QRXJVCQTUtility>();
}

QRXJVCQTUtility& QRXJVCQTUtility::sharedInstance() {
    return sharedInstanceOf<QRXJVCQTUtility>();
}

std::span<const StructureCheck> QRXJVCQTUtility::structureChecks() const {
    return {};
}

}  // namespace qrx
