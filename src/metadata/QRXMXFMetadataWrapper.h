#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "metadata/MxfMetadataIdentifiers.h"
#include "metadata/QRXMXFKey.h"
#include "metadata/QRXMetadataWrapper.h"

namespace qrx {

/// A metadata wrapper with the eight identifiers of MXF besides the 25 of every wrapper, and the
/// table that says which bytes of an MXF file each is found by.
///
/// The key and its lists are made anew on every call.
class QRXMXFMetadataWrapper : public QRXMetadataWrapper {
public:
    using MxfKeys = std::vector<QRXMXFKey>;

    QRXMXFMetadataWrapper()
        : QRXMetadataWrapper(keyDescriptionDictionary(), "QRXMXFMetadataWrapper") {}
    /// KEPT: the values are not taken over; updateMetadataKeyValuesFromDictionary does that.
    explicit QRXMXFMetadataWrapper(const MetadataDictionary&) : QRXMXFMetadataWrapper() {}

    /// KEPT: from an archive come only the 25 keys that every wrapper has.
    explicit QRXMXFMetadataWrapper(const ArchivedObject& coder) : QRXMXFMetadataWrapper() {
        decodeMetadataKeys(coder);
    }

    /// The 33 identifiers with their display texts.
    [[nodiscard]] static MetadataKeyTable keyDescriptionDictionary();
    [[nodiscard]] static std::optional<std::string> descriptionForKey(std::string_view identifier);

    /// The MXF key of that identifier, its value not found. An identifier without an MXF item gives
    /// a key without bytes.
    [[nodiscard]] static QRXMXFKey mxfKeyForMetadataAttributeKey(std::string_view identifier);

    /// Keys whose value is YES or NO.
    [[nodiscard]] static MxfKeys booleanKeys();
    /// Keys whose value is text.
    [[nodiscard]] static MxfKeys keysWithAsciiHex();
    /// Keys whose value is read as hex text: the UMID and the texts.
    [[nodiscard]] static MxfKeys keysWithHexValues();
    /// Keys whose value is read as a number.
    [[nodiscard]] static MxfKeys keysWithNonHexValues();
    /// Those read as hex text, then those read as a number.
    [[nodiscard]] static MxfKeys keysWithValues();
};

}  // namespace qrx
