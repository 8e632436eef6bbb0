#include "metadata/QRXMetadataKey.h"

#include <string_view>
#include <utility>

#include "platform/ports/Services.h"

namespace qrx {

namespace {

// What the log shows for a field that is absent.
constexpr const char* kAbsent = "(null)";

constexpr std::string_view kDescriptionArchiveKey = "metaKeyDescription";
constexpr std::string_view kValueArchiveKey = "metaKeyValue";
constexpr std::string_view kIdentifierArchiveKey = "metaKeyId";

}  // namespace

QRXMetadataKey::QRXMetadataKey() : QRXMetadataKey("", "", std::string(QRXMediaMetadataNotFound)) {}

QRXMetadataKey::QRXMetadataKey(Field identifier, Field description, Field value)
    // KEPT: it is the value that decides whether the identifier is taken. A key without a value
    // can be found by no identifier, and hosts count on that.
    : fields_{value ? std::move(identifier) : Field(""), std::move(description), std::move(value)} {
}

QRXMetadataKey::QRXMetadataKey(const ArchivedObject& coder) : QRXMetadataKey() {
    if (auto text = coder.decodeText(kDescriptionArchiveKey)) fields_.description = std::move(text);
    if (auto text = coder.decodeText(kValueArchiveKey)) fields_.value = std::move(text);
    if (auto text = coder.decodeText(kIdentifierArchiveKey)) fields_.identifier = std::move(text);
}

QRXMetadataKey::QRXMetadataKey(const QRXMetadataKey& other) : fields_(other.fields()) {}

QRXMetadataKey& QRXMetadataKey::operator=(const QRXMetadataKey& other) {
    Fields taken = other.fields();
    const std::scoped_lock lock(mutex_);
    fields_ = std::move(taken);
    return *this;
}

QRXMetadataKey::Field QRXMetadataKey::keyDescription() const {
    return fields().description;
}

QRXMetadataKey::Field QRXMetadataKey::keyValue() const {
    return fields().value;
}

QRXMetadataKey::Field QRXMetadataKey::keyIdentifier() const {
    return fields().identifier;
}

void QRXMetadataKey::setKeyDescription(Field description) {
    const std::scoped_lock lock(mutex_);
    fields_.description = std::move(description);
}

void QRXMetadataKey::setKeyValue(Field value) {
    const std::scoped_lock lock(mutex_);
    fields_.value = std::move(value);
}

void QRXMetadataKey::setKeyIdentifier(Field identifier) {
    const std::scoped_lock lock(mutex_);
    fields_.identifier = std::move(identifier);
}

ArchiveClasses QRXMetadataKey::archiveClasses() const {
    return {"QRXMetadataKey", "NSObject"};
}

void QRXMetadataKey::encodeWithCoder(ArchiveRecord& coder) const {
    const Fields now = fields();
    coder.encodeText(kDescriptionArchiveKey, now.description);
    coder.encodeText(kValueArchiveKey, now.value);
    coder.encodeText(kIdentifierArchiveKey, now.identifier);
}

void QRXMetadataKey::printKeyToLog() const {
    const Fields now = fields();
    platform::systemLog().notice("Key Description:" + now.description.value_or(kAbsent) +
                                 "\nKey Value:" + now.value.value_or(kAbsent) +
                                 "\nKey Identifier:" + now.identifier.value_or(kAbsent));
}

QRXMetadataKey::Fields QRXMetadataKey::fields() const {
    const std::scoped_lock lock(mutex_);
    return fields_;
}

}  // namespace qrx
