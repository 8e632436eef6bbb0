#include "metadata/QRXMXFKey.h"

namespace qrx {

bool QRXMXFKey::isEqual(const QRXMetadataKey& other) const {
    const auto* const key = dynamic_cast<const QRXMXFKey*>(&other);
    return key != nullptr && *key == *this;
}

}  // namespace qrx
