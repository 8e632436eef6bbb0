#include "metadata/QRXMetadataWrapper.h"

#include <algorithm>
#include <array>
#include <utility>

#include "metadata/MetadataArchive.h"

namespace qrx {

namespace {

struct Row {
    std::string_view identifier;
    std::string_view description;
};

// KEPT: "Dimensions" and "Duration" stand twice each; hosts tell the rows apart by identifier.
constexpr std::array kDescriptions{
    Row{QRXMediaMetadataVideoCodecTitleKey, "Video Codec"},
    Row{QRXMediaMetadataAudioCodecTitleKey, "Audio Codec"},
    Row{QRXMediaMetadataCodecDimensionsKey, "Dimensions"},
    Row{QRXMediaMetadataCodecDimensionsDescriptionKey, "Dimensions"},
    Row{QRXMediaMetadataCodecWidthKey, "Width"},
    Row{QRXMediaMetadataCodecHeightKey, "Height"},
    Row{QRXMediaMetadataVideoSampleRateKey, "Video Sample Rate"},
    Row{QRXMediaMetadataAudioSampleRateKey, "Audio Sample Rate"},
    Row{QRXMediaMetadataVideoBitRateKey, "Video Bitrate"},
    Row{QRXMediaMetadataAudioBitRateKey, "Audio Bitrate"},
    Row{QRXMediaMetadataVideoDurationKey, "Duration"},
    Row{QRXMediaMetadataFileSizeKey, "File Size"},
    Row{QRXMediaMetadataGopSizeKey, "Gop Size"},
    Row{QRXMediaMetadataVideoFileTitleKey, "File"},
    Row{QRXMediaMetadataStartTimecodeKey, "Start Timecode"},
    Row{QRXMediaMetadataEndTimecodeKey, "Out Timecode"},
    Row{QRXMediaMetadataAudioChannelsKey, "Audio Channels"},
    Row{QRXMediaMetadataVideoFrameRate, "Frame Rate"},
    Row{QRXMediaMetadataDropFrameKey, "Drop Frame"},
    Row{QRXMediaMetadataManufacturerNameKey, "Manufacturer"},
    Row{QRXMediaMetadataProductsNameKey, "Product"},
    Row{QRXMediaMetadataUMIDKey, "UMID Number"},
    Row{QRXMediaMetadataModificationDateKey, "Date Modified"},
    Row{QRXMediaMetadataCreationDateKey, "Date Created"},
    Row{QRXMediaMetadataDurationKey, "Duration"},
};
static_assert(kDescriptions.size() == 25);

constexpr const char* kArchiveName = "QRXMetadataWrapper";

bool hasIdentifier(const QRXMetadataKey& key, std::string_view identifier) {
    const auto own = key.keyIdentifier();
    return own && *own == identifier;
}

bool isNotFound(const std::optional<std::string>& value) {
    return value && *value == QRXMediaMetadataNotFound;
}

}  // namespace

QRXMetadataWrapper::QRXMetadataWrapper(MetadataKeyTable table, std::string_view archiveName)
    : table_(std::move(table)), archiveName_(archiveName) {
    initializeMetadataKeys();
}

QRXMetadataWrapper::QRXMetadataWrapper(const ArchivedObject& coder) : QRXMetadataWrapper() {
    decodeMetadataKeys(coder);
}

void QRXMetadataWrapper::decodeMetadataKeys(const ArchivedObject& coder) {
    MetadataKeys keys;
    for (const Row& row : kDescriptions) {
        const auto object = coder.decodeObject(row.identifier);
        if (auto key = object ? metadataKeyFrom(*object) : nullptr) keys.push_back(std::move(key));
    }
    metadataKeys_ = std::move(keys);
}

ArchiveClasses QRXMetadataWrapper::archiveClasses() const {
    ArchiveClasses classes{kArchiveName, "QRXMediaObject", "QRXObject", "NSObject"};
    if (!archiveName_.empty()) classes.insert(classes.begin(), archiveName_);
    return classes;
}

void QRXMetadataWrapper::encodeWithCoder(ArchiveRecord& coder) const {
    for (const auto& key : metadataKeys_) {
        if (const auto identifier = key->keyIdentifier()) {
            coder.encodeObject(*identifier, archiveRecordOf(*key));
        }
    }
}

MetadataKeyTable QRXMetadataWrapper::keyDescriptionDictionary() {
    MetadataKeyTable table;
    table.reserve(kDescriptions.size());
    for (const Row& row : kDescriptions) {
        table.push_back({std::string(row.identifier), std::string(row.description)});
    }
    return table;
}

std::optional<std::string> QRXMetadataWrapper::descriptionForKey(std::string_view identifier) {
    const auto* const row =
        std::find_if(kDescriptions.begin(), kDescriptions.end(),
                     [&](const Row& candidate) { return candidate.identifier == identifier; });
    if (row == kDescriptions.end()) return std::nullopt;
    return std::string(row->description);
}

void QRXMetadataWrapper::initializeMetadataKeys() {
    MetadataKeys keys;
    keys.reserve(table_.size());
    for (const auto& row : table_) {
        keys.push_back(std::make_shared<QRXMetadataKey>(row.identifier, row.description,
                                                        std::string(QRXMediaMetadataNotFound)));
    }
    metadataKeys_ = std::move(keys);
}

void QRXMetadataWrapper::replaceValueForKeyEntryWithIdentifier(std::string_view identifier,
                                                               const MetadataValue& newValue) {
    const auto text = newValue.text();
    if (!text) return;
    for (const auto& key : metadataKeys_) {
        if (hasIdentifier(*key, identifier)) key->setKeyValue(text);
    }
}

void QRXMetadataWrapper::updateMetadataKeyValuesFromDictionary(const MetadataDictionary& values) {
    for (const auto& [identifier, value] : values) {
        replaceValueForKeyEntryWithIdentifier(identifier, value);
    }
}

bool QRXMetadataWrapper::keyExistsWithIdentifier(std::string_view identifier) const {
    return std::any_of(metadataKeys_.begin(), metadataKeys_.end(),
                       [&](const auto& key) { return hasIdentifier(*key, identifier); });
}

void QRXMetadataWrapper::addMissingKeysFoundInWrapper(const QRXMetadataWrapper& other) {
    for (const auto& key : other.metadataKeys()) {
        const auto identifier = key->keyIdentifier();
        const bool present = identifier && keyExistsWithIdentifier(*identifier);
        if (!present) metadataKeys_.push_back(key);
    }
}

void QRXMetadataWrapper::replaceExistingKeysWithThoseInWrapper(const QRXMetadataWrapper& other) {
    addMissingKeysFoundInWrapper(other);
    for (const auto& key : other.metadataKeys()) {
        const auto identifier = key->keyIdentifier();
        const auto value = key->keyValue();
        if (identifier && !isNotFound(value)) {
            replaceValueForKeyEntryWithIdentifier(*identifier, value);
        }
    }
}

std::optional<std::string> QRXMetadataWrapper::valueForKey(std::string_view identifier) const {
    for (const auto& key : metadataKeys_) {
        if (!hasIdentifier(*key, identifier)) continue;
        auto value = key->keyValue();
        if (!isNotFound(value)) return value;
    }
    return std::nullopt;
}

}  // namespace qrx
