#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <glib.h>

#include "platform/linux/PropertyListBounds.h"

namespace qrx::platform {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::array<std::string_view, 5> kNamedReferences{"amp", "lt", "gt", "quot", "apos"};
constexpr std::size_t kLongestReference = 10;  // "#x0010FFFF"

bool isBlank(std::string_view text) {
    return text.find_first_not_of(kBlanks) == std::string_view::npos;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// A character that XML 1.0 can hold.
bool isXmlCharacter(std::uint32_t code) {
    if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
    return code < 0xD800 || (code > 0xDFFF && code < 0xFFFE) || (code > 0xFFFF && code < 0x110000);
}

template <class Number>
bool isWholeNumber(std::string_view digits, int base) {
    Number number = 0;
    const char* const end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, number, base);
    return read.ec == std::errc() && read.ptr == end;
}

bool isReference(std::string_view name) {
    if (!name.starts_with('#')) {
        return std::find(kNamedReferences.begin(), kNamedReferences.end(), name) !=
               kNamedReferences.end();
    }
    name.remove_prefix(1);
    const bool hex = name.starts_with('x');
    if (hex) name.remove_prefix(1);
    std::uint32_t code = 0;
    const char* const end = name.data() + name.size();
    const auto read = std::from_chars(name.data(), end, code, hex ? 16 : 10);
    return read.ec == std::errc() && read.ptr == end && isXmlCharacter(code);
}

bool isText(std::string_view content) {
    for (std::size_t at = content.find('&'); at != std::string_view::npos;
         at = content.find('&', at + 1)) {
        const std::string_view rest = content.substr(at + 1, kLongestReference + 1);
        const std::size_t end = rest.find(';');
        if (end == std::string_view::npos || !isReference(rest.substr(0, end))) return false;
    }
    return true;
}

bool isInteger(std::string_view content) {
    std::string_view digits = trimmed(content);
    if (digits.starts_with("0x")) return isWholeNumber<std::uint64_t>(digits.substr(2), 16);
    if (digits.starts_with('-')) return isWholeNumber<std::int64_t>(digits, 10);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    return isWholeNumber<std::uint64_t>(digits, 10);
}

bool isReal(std::string_view content) {
    std::string_view digits = trimmed(content);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    if (digits.find_first_not_of("0123456789.-+eE") != std::string_view::npos) return false;
    double number = 0;
    const char* const end = digits.data() + digits.size();
    const auto read = std::from_chars(digits.data(), end, number);
    return read.ec == std::errc() && read.ptr == end;
}

bool isBase64(std::string_view content) {
    std::string packed;
    for (const char c : content) {
        if (kBlanks.find(c) == std::string_view::npos) packed += c;
    }
    if (packed.size() % 4 != 0) return false;
    for (int padding = 0; padding < 2 && packed.ends_with('='); ++padding)
        packed.pop_back();
    return std::all_of(packed.begin(), packed.end(),
                       [](char c) { return g_ascii_isalnum(c) || c == '+' || c == '/'; });
}

bool isContent(std::string_view element, std::string_view content) {
    if (element == "string" || element == "key") return isText(content);
    if (element == "integer") return isInteger(content);
    if (element == "real") return isReal(content);
    if (element == "data") return isBase64(content);
    return (element == "true" || element == "false") && isBlank(content);
}

struct Tag {
    std::string_view name;
    bool opens = false;
    bool closes = false;  // with `opens`: an empty element
};

class XmlList {
public:
    explicit XmlList(std::string_view markup) : rest_(markup) {}

    [[nodiscard]] bool isBounded() {
        if (!skipProlog()) return false;
        const auto root = nextTag();
        if (!root || root->name != "plist" || !root->opens || root->closes) return false;
        open_.push_back({"plist", 0});
        while (!open_.empty()) {
            if (!skipBetweenElements() || !takeElement()) return false;
        }
        return skipBetweenElements() && rest_.empty();
    }

private:
    struct Open {
        std::string_view name;
        std::size_t children = 0;
    };

    /// Takes up to and including `end`, and answers what stood before it.
    [[nodiscard]] std::optional<std::string_view> takeUntil(std::string_view end) {
        const std::size_t at = rest_.find(end);
        if (at == std::string_view::npos) return std::nullopt;
        const std::string_view taken = rest_.substr(0, at);
        rest_.remove_prefix(at + end.size());
        return taken;
    }

    [[nodiscard]] bool skipBetweenElements() {
        for (;;) {
            rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
            if (!rest_.starts_with("<!--")) return true;
            rest_.remove_prefix(4);
            if (!takeUntil("-->")) return false;
        }
    }

    [[nodiscard]] bool skipProlog() {
        for (;;) {
            if (!skipBetweenElements()) return false;
            if (rest_.starts_with("<?")) {
                const auto instruction = takeUntil("?>");
                if (!instruction || !saysUtf8(*instruction)) return false;
            } else if (rest_.starts_with("<!DOCTYPE")) {
                const auto type = takeUntil(">");
                if (!type || type->find('[') != std::string_view::npos) return false;
            } else {
                return true;
            }
        }
    }

    [[nodiscard]] static bool saysUtf8(std::string_view instruction) {
        const std::size_t at = instruction.find("encoding");
        if (at == std::string_view::npos) return true;
        const std::size_t quote = instruction.find_first_of("\"'", at);
        if (quote == std::string_view::npos) return false;
        const std::string_view name = instruction.substr(quote + 1);
        return name.size() > 5 && g_ascii_strncasecmp(name.data(), "UTF-8", 5) == 0 &&
               name[5] == instruction[quote];
    }

    [[nodiscard]] std::optional<Tag> nextTag() {
        if (!rest_.starts_with('<')) return std::nullopt;
        rest_.remove_prefix(1);
        const auto inside = takeUntil(">");
        if (!inside || inside->find_first_of("<&") != std::string_view::npos) return std::nullopt;
        std::string_view name = *inside;
        if (name.starts_with('/')) {
            name.remove_prefix(1);
            return Tag{trimmed(name), false, true};
        }
        const bool closes = name.ends_with('/');
        if (closes) name.remove_suffix(1);
        const std::string_view first = name.substr(0, name.find_first_of(kBlanks));
        // Only the outermost element has attributes.
        if (first != "plist" && !isBlank(name.substr(first.size()))) return std::nullopt;
        return Tag{first, true, closes};
    }

    /// One tag of a container, or one element without children.
    [[nodiscard]] bool takeElement() {
        const auto tag = nextTag();
        if (!tag) return false;
        if (!tag->opens) return close(tag->name);
        if (!mayStandHere(tag->name) || ++objects_ > kMostPropertyListObjects) return false;
        ++open_.back().children;
        if (tag->name == "dict" || tag->name == "array") {
            if (open_.size() > kMostPropertyListDepth) return false;
            if (!tag->closes) open_.push_back({tag->name, 0});
            return true;
        }
        if (tag->closes) return isContent(tag->name, "");
        const auto content = takeUntil("<");
        if (!content || !isContent(tag->name, *content)) return false;
        const std::string end = "/" + std::string(tag->name) + ">";
        if (!rest_.starts_with(end)) return false;
        rest_.remove_prefix(end.size());
        return true;
    }

    [[nodiscard]] bool close(std::string_view name) {
        const Open closed = open_.back();
        open_.pop_back();
        if (closed.name != name || (name == "plist" && closed.children != 1)) return false;
        return name != "dict" || closed.children % 2 == 0;
    }

    [[nodiscard]] bool mayStandHere(std::string_view name) const {
        const Open& container = open_.back();
        if (container.name == "plist" && container.children != 0) return false;
        const bool keyIsDue = container.name == "dict" && container.children % 2 == 0;
        return (name == "key") == keyIsDue;
    }

    std::string_view rest_;
    std::vector<Open> open_;
    std::size_t objects_ = 0;
};

bool hasOnlyXmlCharacters(std::string_view markup) {
    if (!g_utf8_validate_len(markup.data(), markup.size(), nullptr)) return false;
    for (const char* at = markup.data(); at < markup.data() + markup.size();
         at = g_utf8_next_char(at)) {
        if (!isXmlCharacter(g_utf8_get_char(at))) return false;
    }
    return true;
}

}  // namespace

bool isBoundedXmlPropertyList(std::string_view markup) {
    return markup.size() <= kMostPropertyListBytes && hasOnlyXmlCharacters(markup) &&
           XmlList(markup).isBounded();
}

}  // namespace qrx::platform
