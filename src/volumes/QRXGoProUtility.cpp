#include "volumes/QRXGoProUtility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXGoProUtility> QRXGoProUtility::volumeUtility() {
    return std::make_unique<QRXGoProUtility>();
}

QRXGoProUtility& QRXGoProUtility::sharedInstance() {
    return sharedInstanceOf<QRXGoProUtility>();
}

std::span<const StructureCheck> QRXGoProUtility::structureChecks() const {
    return {};
}

}  // namespace qrx
