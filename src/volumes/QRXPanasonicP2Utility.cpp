#include "volumes/QRXPanasonicP2Utility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXPanasonicP2Utility> QRXPanasonicP2Utility::utility() {
    return std::make_unique<QRXPanasonicP2Utility>();
}

QRXPanasonicP2Utility& QRXPanasonicP2Utility::sharedInstance() {
    return sharedInstanceOf<QRXPanasonicP2Utility>();
}

std::span<const StructureCheck> QRXPanasonicP2Utility::structureChecks() const {
    return {};
}

}  // namespace qrx
