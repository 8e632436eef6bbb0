#include "metadata/QRXMXFKey.h"

namespace qrx {

ArchiveClasses QRXMXFKey::archiveClasses() const {
    ArchiveClasses classes = QRXMetadataKey::archiveClasses();
    classes.insert(classes.begin(), "QRXMXFKey");
    return classes;
}

bool QRXMXFKey::isEqual(const QRXMetadataKey& other) const {
    const auto* const key = dynamic_cast<const QRXMXFKey*>(&other);
    return key != nullptr && *key == *this;
}

}  // namespace qrx
