#include "platform/linux/XmlOutline.h"

#include "platform/ports/XmlDocument.h"

namespace qrx::platform {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

/// Just behind the next `end` in `text` from `from` on.
std::optional<std::size_t> behind(std::string_view text, std::string_view end, std::size_t from) {
    const std::size_t found = text.find(end, from);
    if (found == std::string_view::npos) return std::nullopt;
    return found + end.size();
}

/// Just behind the document type that begins at `from`: quoted texts, comments and instructions in
/// it may hold any of its delimiters.
std::optional<std::size_t> behindDocumentType(std::string_view text, std::size_t from) {
    bool insideBrackets = false;
    std::optional<std::size_t> at = from + 1;
    while (at && *at < text.size()) {
        const auto rest = text.substr(*at);
        if (rest.starts_with("<!--")) {
            at = behind(text, "-->", *at + 4);
        } else if (rest.starts_with("<?")) {
            at = behind(text, "?>", *at + 2);
        } else if (rest.front() == '"' || rest.front() == '\'') {
            at = behind(text, rest.substr(0, 1), *at + 1);
        } else if (rest.front() == '>' && !insideBrackets) {
            return *at + 1;
        } else {
            if (rest.front() == '[') insideBrackets = true;
            if (rest.front() == ']') insideBrackets = false;
            ++*at;
        }
    }
    return std::nullopt;
}

}  // namespace

bool exceedsAttributeLimit(std::string_view markup) {
    // An attribute is an equals sign and a quote, with blanks between at most; no tag goes on
    // beyond a "<".
    std::size_t attributes = 0;
    bool afterEquals = false;
    for (const char character : markup) {
        if (character == '<') {
            attributes = 0;
            afterEquals = false;
        } else if (character == '=') {
            afterEquals = true;
        } else if (afterEquals && kBlanks.find(character) == std::string_view::npos) {
            afterEquals = false;
            const bool isQuote = character == '"' || character == '\'';
            if (isQuote && ++attributes > XmlParser::kMostAttributes) return true;
        }
    }
    return false;
}

std::optional<std::size_t> startOfRoot(std::string_view document) {
    std::optional<std::size_t> at = 0;
    while (at) {
        *at = document.find_first_not_of(kBlanks, *at);
        if (*at == std::string_view::npos) return std::nullopt;
        const auto rest = document.substr(*at);
        if (rest.starts_with("<?")) {
            at = behind(document, "?>", *at + 2);
        } else if (rest.starts_with("<!--")) {
            at = behind(document, "-->", *at + 4);
        } else if (rest.starts_with("<!")) {
            at = behindDocumentType(document, *at);
        } else {
            return at;
        }
    }
    return std::nullopt;
}

}  // namespace qrx::platform
