#include "volumes/QRXJVCMP4Utility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXJVCMP4Utility> QRXJVCMP4Utility::volumeUtility() {
    return std::make_unique<QRXJVCMP4Utility>();
}

QRXJVCMP4Utility& QRXJVCMP4Utility::sharedInstance() {
    return sharedInstanceOf<QRXJVCMP4Utility>();
}

std::span<const StructureCheck> QRXJVCMP4Utility::structureChecks() const {
    return {};
}

}  // namespace qrx
