#include "qrx/ClipMetadata.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "qrx/JsonText.h"

namespace qrx::tool {

std::vector<MetadataEntry> metadataEntries(const QRXMetadataWrapper& wrapper, Entries which) {
    std::vector<MetadataEntry> entries;
    for (const auto& key : wrapper.metadataKeys()) {
        auto value = key->keyValue();
        const bool isFound = value && *value != QRXMediaMetadataNotFound;
        if (!isFound && which == Entries::found) continue;
        entries.push_back({.identifier = key->keyIdentifier().value_or(""),
                           .description = key->keyDescription().value_or(""),
                           .value = std::move(value)});
    }
    return entries;
}

nlohmann::ordered_json metadataJson(const std::vector<MetadataEntry>& entries) {
    auto all = nlohmann::ordered_json::array();
    for (const MetadataEntry& each : entries) {
        nlohmann::ordered_json record;
        record["identifier"] = textJson(each.identifier);
        record["description"] = textJson(each.description);
        record["value"] = textJson(each.value);
        all.push_back(std::move(record));
    }
    return all;
}

}  // namespace qrx::tool
