#include "readers/XmlSpacing.h"

#include <algorithm>
#include <vector>

#include "foundation/Text.h"

namespace qrx {

namespace {

std::string tabs(std::int64_t count) {
    return std::string(static_cast<std::size_t>(std::max<std::int64_t>(count, 0)), '\t');
}

/// The level after a piece: deeper after a start tag with something inside, less deep after an end
/// tag that another follows.
std::int64_t nextLevel(std::int64_t level, bool closes, bool nextCloses) {
    if (!closes && !nextCloses) ++level;
    if (closes && nextCloses) --level;
    return std::max<std::int64_t>(level, 0);
}

bool isWhiteSpace(unsigned char character) {
    return character == ' ' || (character >= '\t' && character <= '\r');
}

}  // namespace

std::string spacedMarkup(std::string_view markup, std::int32_t depth) {
    const std::vector<std::string> pieces = split(markup, "<");
    const auto closes = [&](std::size_t index) { return pieces[index].starts_with('/'); };

    std::string spaced;
    std::int64_t level = depth;
    for (std::size_t i = 0; i + 1 < pieces.size(); ++i) {
        if (pieces[i].empty()) continue;
        const bool previousCloses = i > 0 && closes(i - 1);
        if (level > 0 && (!closes(i) || previousCloses)) spaced += tabs(level);
        spaced += "<" + pieces[i];
        if (closes(i) || !closes(i + 1)) spaced += '\n';
        level = nextLevel(level, closes(i), closes(i + 1));
    }
    return spaced + tabs(depth) + "<" + pieces.back();
}

std::string withoutTrailingWhiteSpace(std::string_view text) {
    std::string result;
    std::string heldBack;
    for (const char16_t unit : utf16Units(text)) {
        const auto narrowed = static_cast<unsigned char>(unit & 0xFFU);
        if (isWhiteSpace(narrowed)) {
            heldBack += static_cast<char>(narrowed);
            continue;
        }
        result += heldBack;
        heldBack.clear();
        if (narrowed != 0) result += characterText(narrowed);
    }
    return result;
}

}  // namespace qrx
