#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/ports/PropertyList.h"

namespace qrx {

// Keyed archives: a property list in which every object, text and number stands once, in one list,
// and objects name what they hold by its place there.
//
//     $version   100000
//     $archiver  "NSKeyedArchiver"
//     $top       {root: UID 1}
//     $objects   ["$null", {key: UID …, $class: UID}, "a text", 5, {$classname, $classes}, …]
//
// UID 0 is nothing. Hosts rely on this layout.

using platform::PropertyListFormat;
using ArchiveBytes = std::vector<std::byte>;

/// Names of a class and of those that it descends from, its own first, the last "NSObject".
using ArchiveClasses = std::vector<std::string>;

/// What one object writes of itself. A key that is written twice keeps its last value.
class ArchiveRecord {
public:
    using Content = std::variant<std::string, std::uint64_t, std::shared_ptr<const ArchiveRecord>>;
    struct Field {
        std::string key;
        Content content;
    };

    explicit ArchiveRecord(ArchiveClasses classes) : classes_(std::move(classes)) {}

    /// Writes nothing when there is no text. A text that a list cannot hold as text (it is not
    /// UTF-8, or has characters that the format lacks) is archived as its bytes.
    void encodeText(std::string_view key, const std::optional<std::string>& text);
    void encodeNumber(std::string_view key, std::uint64_t number);
    void encodeObject(std::string_view key, ArchiveRecord object);

    [[nodiscard]] const ArchiveClasses& classes() const { return classes_; }
    [[nodiscard]] const std::vector<Field>& fields() const { return fields_; }

private:
    void encode(std::string_view key, Content content);

    ArchiveClasses classes_;
    std::vector<Field> fields_;
};

/// The record of an object that has archiveClasses() and encodeWithCoder(ArchiveRecord&).
template <class Object>
[[nodiscard]] ArchiveRecord archiveRecordOf(const Object& object) {
    ArchiveRecord record(object.archiveClasses());
    object.encodeWithCoder(record);
    return record;
}

/// The archive whose root is `root`; nothing when it would exceed the limits of a property list.
/// Does not throw.
[[nodiscard]] std::optional<ArchiveBytes> keyedArchiveOf(
    const ArchiveRecord& root, PropertyListFormat format = PropertyListFormat::binary);
template <class Object>
[[nodiscard]] std::optional<ArchiveBytes> keyedArchiveOf(
    const Object& root, PropertyListFormat format = PropertyListFormat::binary) {
    return keyedArchiveOf(archiveRecordOf(root), format);
}

/// An object of an archive that is being read. It keeps the archive's list alive. Whatever is
/// missing, or is of another kind than asked for, reads as nothing.
class ArchivedObject {
public:
    /// The archive's root object, whichever format the bytes are in. Nothing when they are not a
    /// keyed archive.
    [[nodiscard]] static std::optional<ArchivedObject> rootOfKeyedArchive(
        std::span<const std::byte> bytes);

    /// The name of the object's own class.
    [[nodiscard]] std::optional<std::string> className() const;
    /// Whether the object is of that class or of one that descends from it.
    [[nodiscard]] bool isOfClass(std::string_view name) const;

    [[nodiscard]] std::optional<std::string> decodeText(std::string_view key) const;
    /// A number as 64 bits without a sign: reals are cut to their whole part, negative numbers
    /// wrap.
    [[nodiscard]] std::optional<std::uint64_t> decodeNumber(std::string_view key) const;
    [[nodiscard]] std::optional<ArchivedObject> decodeObject(std::string_view key) const;

private:
    using Objects = std::shared_ptr<const platform::PropertyValue::Array>;
    using Fields = platform::PropertyValue::Dictionary;

    ArchivedObject(Objects objects, const Fields* fields)
        : objects_(std::move(objects)), fields_(fields) {}

    [[nodiscard]] static std::optional<ArchivedObject> objectAt(
        const Objects& objects, const platform::PropertyValue* reference);
    [[nodiscard]] const platform::PropertyValue* valueFor(std::string_view key) const;
    [[nodiscard]] const Fields* classRecord() const;

    Objects objects_;
    const Fields* fields_;  // in *objects_, never null
};

}  // namespace qrx
