#include "metadata/MetadataArchive.h"

#include "foundation/NeutralAnswer.h"
#include "metadata/QRXMXFKey.h"
#include "metadata/QRXMXFMetadataWrapper.h"

namespace qrx {

std::shared_ptr<QRXMetadataKey> metadataKeyFrom(const ArchivedObject& object) {
    if (object.isOfClass("QRXMXFKey")) return std::make_shared<QRXMXFKey>(object);
    if (object.isOfClass("QRXMetadataKey")) return std::make_shared<QRXMetadataKey>(object);
    return nullptr;
}

std::shared_ptr<QRXMetadataKey> metadataKeyOfArchive(std::span<const std::byte> bytes) {
    return answerOr(std::shared_ptr<QRXMetadataKey>(), "metadataKeyOfArchive", [&] {
        const auto root = ArchivedObject::rootOfKeyedArchive(bytes);
        return root ? metadataKeyFrom(*root) : nullptr;
    });
}

std::optional<QRXMetadataWrapper> metadataWrapperOfArchive(std::span<const std::byte> bytes) {
    using Answer = std::optional<QRXMetadataWrapper>;
    return answerOr(Answer(), "metadataWrapperOfArchive", [&]() -> Answer {
        const auto root = ArchivedObject::rootOfKeyedArchive(bytes);
        if (!root) return std::nullopt;
        if (root->isOfClass("QRXMXFMetadataWrapper")) return QRXMXFMetadataWrapper(*root);
        if (root->isOfClass("QRXMetadataWrapper")) return QRXMetadataWrapper(*root);
        return std::nullopt;
    });
}

}  // namespace qrx
