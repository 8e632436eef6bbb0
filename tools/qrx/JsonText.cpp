#include "qrx/JsonText.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "foundation/Text.h"
#include "qrx/ShownText.h"

namespace qrx::tool {

namespace {

/// Whether JSON has the character as it is, whatever stands beside it.
constexpr auto needsNoEscape = [](char c) {
    return c >= 0x20 && c < 0x7F && c != '"' && c != '\\';
};

}  // namespace

std::string jsonText(const nlohmann::ordered_json& value, int indent) {
    const std::string text = value.dump(indent);
    // Control characters below 20 hex are escaped in any case; those above, such as DEL and the
    // eight-bit escape introducers, only when all text is to be ASCII.
    return isPlainText(text) ? text : value.dump(indent, ' ', true);
}

std::string jsonString(std::string_view text) {
    if (!std::all_of(text.begin(), text.end(), needsNoEscape)) return jsonText(text, -1);
    std::string quoted;
    quoted.reserve(text.size() + 2);
    quoted.append(1, '"').append(text).push_back('"');
    return quoted;
}

nlohmann::ordered_json textJson(const std::optional<std::string>& text) {
    if (!text) return nullptr;
    return isUtf8(*text) ? *text : shown(*text);
}

}  // namespace qrx::tool
