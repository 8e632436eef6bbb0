#include "foundation/PathNames.h"

#include "foundation/PathText.h"
#include "foundation/Text.h"

namespace qrx {

namespace {

bool isMember(std::string_view set, char c) {
    return set.find(c) != std::string_view::npos;
}

}  // namespace

static_assert(kInvalidFilePathCharacters.size() == 19);
static_assert(kInvalidFileNameCharacters.size() == 20);
static_assert(kRemovedFileNameCharacters.size() == 19);
static_assert(kTerminalEscapeCharacters.size() == 19);

std::string withoutCharacters(std::string_view text, std::string_view characters) {
    std::string kept;
    kept.reserve(text.size());
    for (const char c : text) {
        if (!isMember(characters, c)) kept += c;
    }
    return kept;
}

std::string escapedForTerminal(std::string_view path) {
    // one pass does what a pass per character would: no member is a backslash
    std::string escaped;
    escaped.reserve(path.size());
    for (const char c : path) {
        if (isMember(kTerminalEscapeCharacters, c)) escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string digitsOnly(std::string_view text, Point point) {
    const std::string_view allowed = point == Point::kept ? "0123456789." : "0123456789";
    std::string kept;
    for (const char16_t unit : utf16Units(text)) {
        const char low = static_cast<char>(unit & 0xFFU);
        if (isMember(allowed, low)) kept += low;
    }
    return kept;
}

bool pathIsHidden(std::string_view path) {
    return beginsWith(path, ".") || beginsWith(lastPathComponentView(path), ".");
}

}  // namespace qrx
