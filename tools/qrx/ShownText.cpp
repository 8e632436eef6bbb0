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

constexpr auto isPrintableAscii = [](char c) { return c >= 0x20 && c < 0x7F; };

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
    text_.reserve(bytes.size());
    pieces_.reserve(bytes.size());
    const auto add = [this](std::string_view text, std::size_t columns) {
        columns_ += columns;
        pieces_.push_back({.begin = text_.size(), .columns = columns});
        text_ += text;
    };
    const auto addEscape = [&add](std::string_view escape) { add(escape, escape.size()); };
    for (Utf8Step step; !bytes.empty(); bytes.remove_prefix(step.length)) {
        step = firstUtf8Step(bytes);
        if (!step.wellFormed || step.code < 0x20 || step.code == 0x7F) {
            addEscape(escapedByte(step.code));
        } else if (step.code == U'\\') {
            addEscape("\\\\");
        } else if (const auto columns = printedColumns(step.code)) {
            add(bytes.substr(0, step.length), *columns);
        } else {
            addEscape(fmt::format("\\u{{{:x}}}", static_cast<unsigned>(step.code)));
        }
    }
}

std::string ShownText::fitted(std::size_t columns) const {
    if (columns_ <= columns) return text();
    if (columns == 0) return {};
    const std::size_t room = columns - 1;  // one for the ellipsis
    const std::size_t headRoom = room / 4;
    std::size_t headEnd = 0;
    std::size_t headColumns = 0;
    for (const Piece& piece : pieces_) {
        headEnd = piece.begin;
        if (headColumns + piece.columns > headRoom) break;
        headColumns += piece.columns;
    }
    std::size_t tailBegin = text_.size();
    std::size_t tailColumns = 0;
    for (auto piece = pieces_.rbegin(); piece != pieces_.rend(); ++piece) {
        if (headColumns + tailColumns + piece->columns > room) break;
        tailColumns += piece->columns;
        tailBegin = piece->begin;
    }
    return text_.substr(0, headEnd).append(kEllipsis).append(text_, tailBegin);
}

std::string shown(std::string_view bytes) {
    const bool asItIs = std::all_of(bytes.begin(), bytes.end(),
                                    [](char c) { return isPrintableAscii(c) && c != '\\'; });
    return asItIs ? std::string(bytes) : ShownText(bytes).text();
}

bool isPlainText(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), isPrintableAscii)) return true;
    while (!text.empty()) {
        const Utf8Step step = firstUtf8Step(text);
        if (!step.wellFormed) return false;
        if (step.code != U'\n' && !printedColumns(step.code)) return false;
        text.remove_prefix(step.length);
    }
    return true;
}

}  // namespace qrx::tool
