#include "qrx/ShownText.h"

#include <algorithm>
#include <array>
#include <cwchar>
#include <optional>

#include <fmt/core.h>

#include "foundation/Utf8.h"

namespace qrx::tool {

namespace {

constexpr std::string_view kEllipsis = "…";

struct Range {
    char32_t first;
    char32_t last;
};

// Characters that the C library counts as printable though they show nothing and change how their
// surroundings are shown.
constexpr std::array kDirectionCharacters{
    Range{0x061C, 0x061C}, Range{0x200E, 0x200F}, Range{0x2028, 0x202E},
    Range{0x2066, 0x2069}, Range{0xFEFF, 0xFEFF}, Range{0xFFF9, 0xFFFB},
};

bool turnsDirection(char32_t code) {
    return std::any_of(
        kDirectionCharacters.begin(), kDirectionCharacters.end(),
        [code](const Range& range) { return code >= range.first && code <= range.last; });
}

std::string escapedByte(char32_t code) {
    switch (code) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return fmt::format("\\x{:02x}", static_cast<unsigned>(code));
    }
}

/// Columns of a character that may stand as it is; nothing for one that may not.
std::optional<std::size_t> printedColumns(char32_t code) {
    if (code < 0x20 || code == 0x7F) return std::nullopt;
    if (code < 0x7F) return 1;
    if (turnsDirection(code)) return std::nullopt;
    const int columns = ::wcwidth(static_cast<wchar_t>(code));
    if (columns < 0) return std::nullopt;
    return static_cast<std::size_t>(columns);
}

}  // namespace

ShownText::ShownText(std::string_view bytes) {
    const auto add = [this](std::string text, std::size_t columns) {
        columns_ += columns;
        pieces_.push_back({std::move(text), columns});
    };
    const auto addEscape = [&add](std::string escape) {
        const std::size_t columns = escape.size();
        add(std::move(escape), columns);
    };
    for (Utf8Step step; !bytes.empty(); bytes.remove_prefix(step.length)) {
        step = firstUtf8Step(bytes);
        if (!step.wellFormed || step.code < 0x20 || step.code == 0x7F) {
            addEscape(escapedByte(step.code));
        } else if (step.code == U'\\') {
            addEscape("\\\\");
        } else if (const auto columns = printedColumns(step.code)) {
            add(std::string(bytes.substr(0, step.length)), *columns);
        } else {
            addEscape(fmt::format("\\u{{{:x}}}", static_cast<unsigned>(step.code)));
        }
    }
}

std::string ShownText::text() const {
    std::string all;
    for (const Piece& piece : pieces_) {
        all += piece.text;
    }
    return all;
}

std::string ShownText::fitted(std::size_t columns) const {
    if (columns_ <= columns) return text();
    if (columns == 0) return {};
    const std::size_t room = columns - 1;  // one for the ellipsis
    const std::size_t headRoom = room / 4;
    std::string head;
    std::size_t headColumns = 0;
    for (const Piece& piece : pieces_) {
        if (headColumns + piece.columns > headRoom) break;
        headColumns += piece.columns;
        head += piece.text;
    }
    auto from = pieces_.end();
    std::size_t tailColumns = 0;
    while (from != pieces_.begin() && headColumns + tailColumns + (from - 1)->columns <= room) {
        --from;
        tailColumns += from->columns;
    }
    std::string fittedText = head + std::string(kEllipsis);
    for (; from != pieces_.end(); ++from) {
        fittedText += from->text;
    }
    return fittedText;
}

std::string shown(std::string_view bytes) {
    return ShownText(bytes).text();
}

bool isPlainText(std::string_view text) {
    while (!text.empty()) {
        const Utf8Step step = firstUtf8Step(text);
        if (!step.wellFormed) return false;
        if (step.code != U'\n' && !printedColumns(step.code)) return false;
        text.remove_prefix(step.length);
    }
    return true;
}

}  // namespace qrx::tool
