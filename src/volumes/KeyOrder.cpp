#include "volumes/KeyOrder.h"

#include "foundation/PathText.h"
#include "foundation/Text.h"

namespace qrx {

namespace {

/// Whether every character is one byte, so that bytes can be counted.
bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

FilePaths byNameIgnoringCase(const FilePaths& files) {
    FilePaths ordered = files;
    std::stable_sort(ordered.begin(), ordered.end(), [](const FilePath& a, const FilePath& b) {
        return compareIgnoringCase(lastPathComponentView(a), lastPathComponentView(b)) < 0;
    });
    return ordered;
}

std::optional<std::string> firstCharacters(std::string_view text, std::size_t count) {
    if (isPlain(text)) {
        if (text.size() < count) return std::nullopt;
        return std::string(text.substr(0, count));
    }
    const std::u16string units = utf16Units(text);
    if (units.size() < count) return std::nullopt;
    return fromUtf16Units(std::u16string_view(units).substr(0, count));
}

std::optional<std::string> lastCharacters(std::string_view text, std::size_t count) {
    if (isPlain(text)) {
        if (text.size() < count) return std::nullopt;
        return std::string(text.substr(text.size() - count));
    }
    const std::u16string units = utf16Units(text);
    if (units.size() < count) return std::nullopt;
    return fromUtf16Units(std::u16string_view(units).substr(units.size() - count));
}

}  // namespace qrx
