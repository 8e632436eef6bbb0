#pragma once

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "metadata/QRXMetadataWrapper.h"

namespace qrx::tool {

/// One row of a clip's metadata.
struct MetadataEntry {
    std::string identifier;
    std::string description;
    std::optional<std::string> value;
};

enum class Entries {
    found,  ///< those with a value
    all,    ///< also those at QRXMediaMetadataNotFound
};

[[nodiscard]] std::vector<MetadataEntry> metadataEntries(const QRXMetadataWrapper& wrapper,
                                                         Entries which);

/// Records with the members identifier, description and value; text that is not UTF-8 as it is
/// shown.
[[nodiscard]] nlohmann::ordered_json metadataJson(const std::vector<MetadataEntry>& entries);

}  // namespace qrx::tool
