#include "metadata/QRXMXFMetadataWrapper.h"

#include <algorithm>
#include <array>
#include <exception>
#include <initializer_list>

#include "platform/ports/Services.h"

namespace qrx {

namespace {

struct Description {
    std::string_view identifier;
    std::string_view text;
};

constexpr std::array kMxfDescriptions{
    Description{QRXMXFMediaMetadataRoundedVideoFrameRateKey, "Rounded Framerate"},
    Description{QRXMXFMediaMetadataSMPTEPrefixKey, "SMPTE Prefix"},
    Description{QRXMXFMediaMetadataHeaderKey, "MXF Header"},
    Description{QRXMXFMediaMetadataVersionKey, "MXF Version"},
    Description{QRXMXFMediaMetadataUMIDKey, "UMID Number"},
    Description{QRXMXFMediaMetadataEditUnitsKey, "Edit Units"},
    Description{QRXMXFMediaMetadataUUIDKey, "Device Id"},
    Description{QRXMXFMediaMetadataTrackEditRateKey, "Track Edit Rate"},
};

/// How an item is found; bytes as hexadecimal digits, blanks between them for the reader alone.
struct MxfItem {
    std::string_view identifier;
    std::string_view globalKey;
    std::string_view localKey;
    std::string_view length;
};

// clang-format off
// KEPT: the texts are found only where the file stores exactly 8 bytes for them, and the
// modification date has no length at all, so its value is always empty.
constexpr std::array kMxfItems{
    //      identifier                                   universal label (SMPTE registry)       tag     length
    MxfItem{QRXMXFMediaMetadataRoundedVideoFrameRateKey, "060E2B34 01010102 06010104 06090000", "1502", "0002"},
    MxfItem{QRXMediaMetadataStartTimecodeKey,            "060E2B34 01010102 04040101 02060000", "1501", "0008"},
    MxfItem{QRXMediaMetadataDropFrameKey,                "060E2B34 01010102 07020103 01050000", "1503", "0001"},
    MxfItem{QRXMediaMetadataManufacturerNameKey,         "060E2B34 01010102 05200701 01000000", "3C01", "0008"},
    MxfItem{QRXMediaMetadataProductsNameKey,             "060E2B34 01010102 05200701 02010000", "3C02", "0008"},
    MxfItem{QRXMXFMediaMetadataVersionKey,               "060E2B34 01010102 05200701 03010000", "3C04", "0008"},
    MxfItem{QRXMediaMetadataModificationDateKey,         "060E2B34 01010102 07020110 01030000", "4404", ""},
    MxfItem{QRXMediaMetadataUMIDKey,                     "060E2B34 01010104 01030404 00000000", "4401", "0020"},
    MxfItem{QRXMXFMediaMetadataEditUnitsKey,             "060E2B34 01010105 04040402 05000000", "3F0B", "0008"},
    MxfItem{QRXMediaMetadataDurationKey,                 "060E2B34 01010102 04070100 00000000", "0202", "0008"},
    MxfItem{QRXMediaMetadataVideoBitRateKey,             "060E2B34 01010105 04020302 01000000", "3D09", "0004"},
    MxfItem{QRXMXFMediaMetadataUUIDKey,                  "060E2B34 01010102 05200701 05010000", "3C05", "0010"},
    MxfItem{QRXMXFMediaMetadataTrackEditRateKey,         "060E2B34 01010102 01040103 00000000", "4B01", "0008"},
    MxfItem{QRXMXFMediaMetadataSMPTEPrefixKey,           "060E2B34",                            "",     ""},
    MxfItem{QRXMXFMediaMetadataHeaderKey,                "060E2B34 02050101 0D0102",            "",     ""},
};
// clang-format on

constexpr int digitValue(char digit) {
    return digit >= 'A' ? digit - 'A' + 10 : digit - '0';
}

constexpr bool isUpperCaseHex(std::string_view text) {
    std::size_t digits = 0;
    for (const char c : text) {
        if (c == ' ') continue;
        if (!((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'))) return false;
        ++digits;
    }
    return digits % 2 == 0;
}
static_assert(std::all_of(kMxfItems.begin(), kMxfItems.end(), [](const MxfItem& item) {
    return isUpperCaseHex(item.globalKey) && isUpperCaseHex(item.localKey) &&
           isUpperCaseHex(item.length);
}));

QRXMXFKey::Bytes bytesOfHex(std::string_view hex) {
    QRXMXFKey::Bytes bytes;
    int high = -1;  // value of the first digit of a pair, or none yet
    for (const char c : hex) {
        if (c == ' ') continue;
        if (high < 0) {
            high = digitValue(c);
        } else {
            bytes.push_back(static_cast<std::byte>(high * 16 + digitValue(c)));
            high = -1;
        }
    }
    return bytes;
}

QRXMXFMetadataWrapper::MxfKeys keysFor(std::initializer_list<std::string_view> identifiers) {
    QRXMXFMetadataWrapper::MxfKeys keys;
    for (const std::string_view identifier : identifiers) {
        keys.push_back(QRXMXFMetadataWrapper::mxfKeyForMetadataAttributeKey(identifier));
    }
    return keys;
}

QRXMXFMetadataWrapper::MxfKeys joined(QRXMXFMetadataWrapper::MxfKeys first,
                                      const QRXMXFMetadataWrapper::MxfKeys& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

}  // namespace

MetadataKeyTable QRXMXFMetadataWrapper::keyDescriptionDictionary() {
    MetadataKeyTable table = QRXMetadataWrapper::keyDescriptionDictionary();
    for (const Description& row : kMxfDescriptions) {
        table.push_back({std::string(row.identifier), std::string(row.text)});
    }
    return table;
}

std::optional<std::string> QRXMXFMetadataWrapper::descriptionForKey(std::string_view identifier) {
    for (const Description& row : kMxfDescriptions) {
        if (row.identifier == identifier) return std::string(row.text);
    }
    return QRXMetadataWrapper::descriptionForKey(identifier);
}

QRXMXFKey QRXMXFMetadataWrapper::mxfKeyForMetadataAttributeKey(std::string_view identifier) {
    QRXMXFKey key(std::string(identifier), descriptionForKey(identifier),
                  std::string(QRXMediaMetadataNotFound));
    try {
        const auto* const item =
            std::find_if(kMxfItems.begin(), kMxfItems.end(),
                         [&](const MxfItem& row) { return row.identifier == identifier; });
        if (item != kMxfItems.end()) {
            key.setGlobalKey(bytesOfHex(item->globalKey));
            key.setLocalKey(bytesOfHex(item->localKey));
            key.setHexLocalKeyLength(bytesOfHex(item->length));
        }
    } catch (const std::exception& fault) {
        platform::systemLog().notice(fault.what());
    }
    return key;
}

QRXMXFMetadataWrapper::MxfKeys QRXMXFMetadataWrapper::booleanKeys() {
    return keysFor({QRXMediaMetadataDropFrameKey});
}

QRXMXFMetadataWrapper::MxfKeys QRXMXFMetadataWrapper::keysWithAsciiHex() {
    return keysFor({QRXMediaMetadataManufacturerNameKey, QRXMediaMetadataProductsNameKey,
                    QRXMXFMediaMetadataVersionKey});
}

QRXMXFMetadataWrapper::MxfKeys QRXMXFMetadataWrapper::keysWithHexValues() {
    return joined(keysFor({QRXMediaMetadataUMIDKey}), keysWithAsciiHex());
}

QRXMXFMetadataWrapper::MxfKeys QRXMXFMetadataWrapper::keysWithNonHexValues() {
    return joined(keysFor({QRXMXFMediaMetadataRoundedVideoFrameRateKey}), booleanKeys());
}

QRXMXFMetadataWrapper::MxfKeys QRXMXFMetadataWrapper::keysWithValues() {
    return joined(keysWithHexValues(), keysWithNonHexValues());
}

}  // namespace qrx
