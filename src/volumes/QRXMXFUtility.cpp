#include "volumes/QRXMXFUtility.h"

#include "foundation/SharedInstance.h"

namespace qrx {

std::unique_ptr<QRXMXFUtility> QRXMXFUtility::utility() {
    return std::make_unique<QRXMXFUtility>();
}

QRXMXFUtility& QRXMXFUtility::sharedInstance() {
    return sharedInstanceOf<QRXMXFUtility>();
}

}  // namespace qrx
