#include "volumes/QRXREDOneUtility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXREDOneUtility> QRXREDOneUtility::volumeUtility() {
    return std::make_unique<QRXREDOneUtility>();
}

QRXREDOneUtility& QRXREDOneUtility::sharedInstance() {
    return sharedInstanceOf<QRXREDOneUtility>();
}

std::span<const StructureCheck> QRXREDOneUtility::structureChecks() const {
    return {};
}

}  // namespace qrx
