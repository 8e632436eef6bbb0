#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "metadata/QRXMetadataKey.h"

namespace qrx {

/// A metadata key that can be found in the bytes of an MXF file.
class QRXMXFKey : public QRXMetadataKey {
public:
    using Bytes = std::vector<std::byte>;

    /// As an empty metadata key, with no bytes.
    QRXMXFKey() = default;
    /// With no bytes.
    QRXMXFKey(Field identifier, Field description, Field value)
        : QRXMetadataKey(std::move(identifier), std::move(description), std::move(value)) {}

    /// From an archive, which has the fields of every metadata key and none of the bytes.
    explicit QRXMXFKey(const ArchivedObject& coder) : QRXMetadataKey(coder) {}

    /// The 16-byte universal label of the item; for two special keys a shorter prefix.
    [[nodiscard]] const Bytes& globalKey() const { return globalKey_; }
    /// The 2-byte local tag of the item, big-endian.
    [[nodiscard]] const Bytes& localKey() const { return localKey_; }
    /// The 2-byte big-endian length that follows the tag in the file; may be empty.
    [[nodiscard]] const Bytes& hexLocalKeyLength() const { return hexLocalKeyLength_; }

    void setGlobalKey(Bytes key) { globalKey_ = std::move(key); }
    void setLocalKey(Bytes key) { localKey_ = std::move(key); }
    void setHexLocalKeyLength(Bytes length) { hexLocalKeyLength_ = std::move(length); }

    [[nodiscard]] ArchiveClasses archiveClasses() const override;

    /// Whether `other` is an MXF key with the same label; nothing else is compared.
    [[nodiscard]] bool isEqual(const QRXMetadataKey& other) const;
    [[nodiscard]] friend bool operator==(const QRXMXFKey& a, const QRXMXFKey& b) {
        return a.globalKey_ == b.globalKey_;
    }

private:
    Bytes globalKey_;
    Bytes localKey_;
    Bytes hexLocalKeyLength_;
};

}  // namespace qrx
