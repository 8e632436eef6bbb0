#include "volumes/QRXCanonEOSUtility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXCanonEOSUtility> QRXCanonEOSUtility::volumeUtility() {
    return std::make_unique<QRXCanonEOSUtility>();
}

QRXCanonEOSUtility& QRXCanonEOSUtility::sharedInstance() {
    return sharedInstanceOf<QRXCanonEOSUtility>();
}

std::span<const StructureCheck> QRXCanonEOSUtility::structureChecks() const {
    return {};
}

}  // namespace qrx
