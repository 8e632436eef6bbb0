#include "volumes/QRXCanonXFUtility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXCanonXFUtility> QRXCanonXFUtility::utility() {
    return std::make_unique<QRXCanonXFUtility>();
}

QRXCanonXFUtility& QRXCanonXFUtility::sharedInstance() {
    return sharedInstanceOf<QRXCanonXFUtility>();
}

std::span<const StructureCheck> QRXCanonXFUtility::structureChecks() const {
    return {};
}

}  // namespace qrx
