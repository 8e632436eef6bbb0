#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace qrx::tool {

/// The value as JSON. Text that holds characters which could move a terminal's cursor, turn the
/// direction of writing or pass for a line end is written in ASCII escapes altogether.
/// @param indent  blanks a level; -1 for all on one line.
[[nodiscard]] std::string jsonText(const nlohmann::ordered_json& value, int indent);

/// jsonText of a text, quotes included, without a detour for the usual, plain one.
[[nodiscard]] std::string jsonString(std::string_view text);

/// The text, as it is shown where it is not UTF-8; null where there is none.
[[nodiscard]] nlohmann::ordered_json textJson(const std::optional<std::string>& text);

}  // namespace qrx::tool
