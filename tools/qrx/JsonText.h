#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace qrx::tool {

/// Adds the path to a record: as "filePath", or, when it is not UTF-8, its bytes as "filePathBytes"
/// in base64.
void addPath(nlohmann::ordered_json& record, std::string_view path);

/// The value as JSON. Text that holds characters which could move a terminal's cursor, turn the
/// direction of writing or pass for a line end is written in ASCII escapes altogether.
/// @param indent  blanks a level; -1 for all on one line.
[[nodiscard]] std::string jsonText(const nlohmann::ordered_json& value, int indent);

/// jsonText of a text, quotes included, without a detour for the usual, plain one.
[[nodiscard]] std::string jsonString(std::string_view text);

}  // namespace qrx::tool
