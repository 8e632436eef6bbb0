#pragma once

namespace qrx {

/// Root of the class tree. The three roots add no state; they tell what family a class belongs to.
class QRXObject {
public:
    QRXObject() = default;
    QRXObject(const QRXObject&) = default;
    QRXObject& operator=(const QRXObject&) = default;
    QRXObject(QRXObject&&) = default;
    QRXObject& operator=(QRXObject&&) = default;
    virtual ~QRXObject() = default;
};

/// Root of everything that concerns media.
class QRXMediaObject : public QRXObject {};

/// Root of the volume utilities and their aggregate.
class QRXHDMediaObject : public QRXMediaObject {};

}  // namespace qrx
