#include "volumes/QRXXDCAMUtility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXXDCAMUtility> QRXXDCAMUtility::utility() {
    return std::make_unique<QRXXDCAMUtility>();
}

QRXXDCAMUtility& QRXXDCAMUtility::sharedInstance() {
    return sharedInstanceOf<QRXXDCAMUtility>();
}

}  // namespace qrx
