#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "foundation/KeyedArchive.h"
#include "metadata/MetadataIdentifiers.h"

namespace qrx {

/// One fact about a clip: what it is called inside, what it is called on screen, and its value.
///
/// Wrappers may share a key. Each field is read and written as a whole, from any thread; a copy of
/// a key is a key of its own. No operation throws.
class QRXMetadataKey {
public:
    using Field = std::optional<std::string>;

    /// Empty identifier, empty description, no value found.
    QRXMetadataKey();
    /// Takes the three as they are, but without a value the identifier becomes empty.
    QRXMetadataKey(Field identifier, Field description, Field value);

    /// From an archive: a field that is missing there is as in an empty key.
    explicit QRXMetadataKey(const ArchivedObject& coder);

    QRXMetadataKey(const QRXMetadataKey& other);
    QRXMetadataKey& operator=(const QRXMetadataKey& other);
    virtual ~QRXMetadataKey() = default;

    /// Display text, such as "Start Timecode".
    [[nodiscard]] Field keyDescription() const;
    /// The value as text, or QRXMediaMetadataNotFound.
    [[nodiscard]] Field keyValue() const;
    /// One of the identifiers of MetadataIdentifiers.h, or of a subclass's table.
    [[nodiscard]] Field keyIdentifier() const;

    void setKeyDescription(Field description);
    void setKeyValue(Field value);
    void setKeyIdentifier(Field identifier);

    /// The class as archives name it, with its ancestors.
    [[nodiscard]] virtual ArchiveClasses archiveClasses() const;
    /// Writes the three fields, each only when it is there.
    void encodeWithCoder(ArchiveRecord& coder) const;

    /// Writes the three fields to the system log, one entry.
    void printKeyToLog() const;

private:
    struct Fields {
        Field identifier;
        Field description;
        Field value;
    };
    [[nodiscard]] Fields fields() const;

    mutable std::mutex mutex_;
    Fields fields_;
};

}  // namespace qrx
