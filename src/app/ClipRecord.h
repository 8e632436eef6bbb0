#pragma once

#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "volumes/PathDictionary.h"

namespace qrx {

// Clips in JSON, as service and command line write them.

/// Adds the path to a record: as "filePath", or, when it is not UTF-8, its bytes as "filePathBytes"
/// in base64.
void addPath(nlohmann::ordered_json& record, std::string_view path);

/// {"filePath" or "filePathBytes", "volumeTitle", "qt"}.
[[nodiscard]] nlohmann::ordered_json clipRecord(const PathDictionary& clip);

/// The clips of such records, one a line. Throws std::invalid_argument where a line is none.
[[nodiscard]] std::vector<PathDictionary> clipsOfLines(std::string_view lines);

}  // namespace qrx
