#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/KeyedArchive.h"
#include "foundation/QRXObject.h"
#include "metadata/MetadataIdentifiers.h"
#include "metadata/MetadataValue.h"
#include "metadata/QRXMetadataKey.h"

namespace qrx {

/// One row of a description table.
struct MetadataKeyDescription {
    std::string identifier;
    std::string description;  ///< display text; two identifiers may share one
};
using MetadataKeyTable = std::vector<MetadataKeyDescription>;

using MetadataKeys = std::vector<std::shared_ptr<QRXMetadataKey>>;

/// Everything that is known about one clip: a list of keys, filled at first with every key of the
/// class's table at QRXMediaMetadataNotFound; whoever finds a value then overwrites it.
///
/// A wrapper can be moved, not copied: its keys may be shared with other wrappers, and whether a
/// copy should share them too is for its maker to say. It is built and filled on one thread and
/// then handed on. No operation throws.
class QRXMetadataWrapper : public QRXMediaObject {
public:
    QRXMetadataWrapper() : QRXMetadataWrapper(keyDescriptionDictionary()) {}
    /// KEPT: the values are not taken over; updateMetadataKeyValuesFromDictionary does that.
    explicit QRXMetadataWrapper(const MetadataDictionary&) : QRXMetadataWrapper() {}

    /// From an archive: the keys that it holds under the identifiers of keyDescriptionDictionary(),
    /// in that order, and no others.
    /// KEPT: keys of a subclass's own table are lost, for the host reads no others either.
    explicit QRXMetadataWrapper(const ArchivedObject& coder);

    QRXMetadataWrapper(const QRXMetadataWrapper&) = delete;
    QRXMetadataWrapper& operator=(const QRXMetadataWrapper&) = delete;
    QRXMetadataWrapper(QRXMetadataWrapper&&) = default;
    QRXMetadataWrapper& operator=(QRXMetadataWrapper&&) = default;
    ~QRXMetadataWrapper() override = default;

    /// The 25 identifiers with their display texts.
    [[nodiscard]] static MetadataKeyTable keyDescriptionDictionary();
    /// The display text of `identifier`; nothing when the table lacks it.
    [[nodiscard]] static std::optional<std::string> descriptionForKey(std::string_view identifier);
    /// The form in which date values are written, for strftime: "03-05-2011-14h-02m-09s".
    [[nodiscard]] static std::string dateKeyCalendarFormat() { return "%m-%d-%Y-%Hh-%Mm-%Ss"; }

    /// Replaces the keys by a fresh one at QRXMediaMetadataNotFound for each row of the class's
    /// table.
    void initializeMetadataKeys();

    /// Gives every key of that identifier the value's text. An identifier that no key has, and a
    /// value without a text, change nothing.
    void replaceValueForKeyEntryWithIdentifier(std::string_view identifier,
                                               const MetadataValue& newValue);
    void updateMetadataKeyValuesFromDictionary(const MetadataDictionary& values);

    [[nodiscard]] bool keyExistsWithIdentifier(std::string_view identifier) const;
    /// Appends, in the other's order, every key whose identifier this wrapper lacks. The keys are
    /// shared from then on: a value set through one wrapper is seen through both.
    void addMissingKeysFoundInWrapper(const QRXMetadataWrapper& other);
    /// Takes over what the other found, its missing keys included; what it did not find stays as
    /// it is here.
    void replaceExistingKeysWithThoseInWrapper(const QRXMetadataWrapper& other);

    /// The value of the first key of that identifier whose value is not QRXMediaMetadataNotFound;
    /// nothing when there is none.
    [[nodiscard]] std::optional<std::string> valueForKey(std::string_view identifier) const;

    /// The class as archives name it, with its ancestors. A wrapper moved into one of a class above
    /// keeps the name that it was made with.
    [[nodiscard]] ArchiveClasses archiveClasses() const;
    /// Writes each key under its identifier; of two with one identifier the later. A key without an
    /// identifier has no place in an archive and is left out.
    void encodeWithCoder(ArchiveRecord& coder) const;

    /// The list as it is now; later changes of the wrapper's list do not show in it.
    [[nodiscard]] MetadataKeys metadataKeys() const { return metadataKeys_; }
    void setMetadataKeys(MetadataKeys keys) { metadataKeys_ = std::move(keys); }

protected:
    /// For a class with a table of its own; it also hides the two table lookups above.
    /// @param archiveName  name of the class where archives know it by one of its own.
    explicit QRXMetadataWrapper(MetadataKeyTable table, std::string_view archiveName = "");
    /// Replaces the keys by those of an archive.
    void decodeMetadataKeys(const ArchivedObject& coder);

private:
    MetadataKeyTable table_;
    std::string archiveName_;
    MetadataKeys metadataKeys_;
};

}  // namespace qrx
