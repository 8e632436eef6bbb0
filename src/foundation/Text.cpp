#include "foundation/Text.h"

#include <algorithm>

#include "foundation/Utf8.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

char asciiUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalIgnoringAsciiCase(char a, char b) {
    return asciiLower(a) == asciiLower(b);
}

bool isBlank(char32_t code) {
    return code == '\t' || code == 0x20 || code == 0xA0 || code == 0x1680 ||
           (code >= 0x2000 && code <= 0x200B) || code == 0x202F || code == 0x205F || code == 0x3000;
}

bool isLineEnd(char32_t code) {
    return (code >= 0x0A && code <= 0x0D) || code == 0x85 || code == 0x2028 || code == 0x2029;
}

/// `text`, which is ASCII, with `map` applied to each character. Goes by blocks because compilers
/// make vector instructions of a loop whose length they know.
template <class Map>
std::string mappedAscii(std::string_view text, Map map) {
    constexpr std::size_t kBlock = 16;
    std::string mapped(text);
    char* at = mapped.data();
    std::size_t left = mapped.size();
    for (; left >= kBlock; left -= kBlock, at += kBlock) {
        for (std::size_t i = 0; i < kBlock; ++i)
            at[i] = map(at[i]);
    }
    std::transform(at, at + left, at, map);
    return mapped;
}

/// `text` without the characters at both ends for which `drops` answers YES.
template <class Drops>
std::string trimmed(std::string_view text, Drops drops) {
    while (!text.empty()) {
        const Utf8Step step = firstUtf8Step(text);
        if (!drops(step)) break;
        text.remove_prefix(step.length);
    }
    while (!text.empty()) {
        const Utf8Step step = lastUtf8Step(text);
        if (!drops(step)) break;
        text.remove_suffix(step.length);
    }
    return std::string(text);
}

template <class Find>
std::string replaced(std::string_view text, std::string_view target, std::string_view replacement,
                     Find findIn) {
    std::string result;
    while (const auto at = findIn(text, target)) {
        result.append(text.substr(0, *at)).append(replacement);
        text.remove_prefix(*at + target.size());
    }
    return result.append(text);
}

int compareBytes(std::string_view a, std::string_view b) {
    const int order = a.compare(b);  // as unsigned bytes
    return (order > 0) - (order < 0);
}

int compareAsciiIgnoringCase(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int difference = asciiLower(a[i]) - asciiLower(b[i]);
        if (difference != 0) return difference < 0 ? -1 : 1;
    }
    return (a.size() > b.size()) - (a.size() < b.size());
}

}  // namespace

std::string upperCased(std::string_view text) {
    return isAscii(text) ? mappedAscii(text, asciiUpper) : platform::textRules().upperCased(text);
}

std::string lowerCased(std::string_view text) {
    return isAscii(text) ? mappedAscii(text, asciiLower) : platform::textRules().lowerCased(text);
}

bool beginsWith(std::string_view text, std::string_view pattern) {
    return !pattern.empty() && text.starts_with(pattern);
}

bool endsWith(std::string_view text, std::string_view pattern) {
    return !pattern.empty() && text.ends_with(pattern);
}

bool contains(std::string_view text, std::string_view pattern) {
    return find(text, pattern).has_value();
}

bool containsInARow(std::string_view text, std::string_view first, std::string_view second) {
    if (first.empty()) return contains(text, second);
    while (const auto at = find(text, first)) {
        if (text.substr(*at + first.size()).starts_with(second)) return true;
        text.remove_prefix(*at + 1);
    }
    return false;
}

std::optional<std::size_t> find(std::string_view text, std::string_view pattern) {
    if (pattern.empty()) return std::nullopt;
    const std::size_t at = text.find(pattern);
    if (at == std::string_view::npos) return std::nullopt;
    return at;
}

std::optional<std::size_t> findIgnoringCase(std::string_view text, std::string_view pattern) {
    if (pattern.empty()) return std::nullopt;
    const auto at = std::search(text.begin(), text.end(), pattern.begin(), pattern.end(),
                                equalIgnoringAsciiCase);
    if (at == text.end()) return std::nullopt;
    return static_cast<std::size_t>(at - text.begin());
}

std::vector<std::string> split(std::string_view text, std::string_view separator) {
    std::vector<std::string> pieces;
    while (const auto at = find(text, separator)) {
        pieces.emplace_back(text.substr(0, *at));
        text.remove_prefix(*at + separator.size());
    }
    pieces.emplace_back(text);
    return pieces;
}

std::string replaceAll(std::string_view text, std::string_view target,
                       std::string_view replacement) {
    return replaced(text, target, replacement, find);
}

std::string replaceAllIgnoringCase(std::string_view text, std::string_view target,
                                   std::string_view replacement) {
    return replaced(text, target, replacement, findIgnoringCase);
}

std::string trimBlanks(std::string_view text) {
    return trimmed(text, [](Utf8Step step) { return step.wellFormed && isBlank(step.code); });
}

std::string trimBlanksAndLineEnds(std::string_view text) {
    return trimmed(text, [](Utf8Step step) {
        return step.wellFormed && (isBlank(step.code) || isLineEnd(step.code));
    });
}

std::string trimLetters(std::string_view text) {
    return trimmed(text, [](Utf8Step step) {
        if (!step.wellFormed) return false;
        if (step.code >= 0x80) return platform::textRules().isLetterOrMark(step.code);
        const char lower = asciiLower(static_cast<char>(step.code));
        return lower >= 'a' && lower <= 'z';
    });
}

std::string trimNonDigits(std::string_view text) {
    return trimmed(text, [](Utf8Step step) {
        if (!step.wellFormed) return true;
        if (step.code >= 0x80) return !platform::textRules().isDecimalDigit(step.code);
        return step.code < '0' || step.code > '9';
    });
}

int compareIgnoringCase(std::string_view a, std::string_view b) {
    if (isAscii(a) && isAscii(b)) return compareAsciiIgnoringCase(a, b);
    const int order = utf16Units(lowerCased(a)).compare(utf16Units(lowerCased(b)));
    return (order > 0) - (order < 0);
}

bool precedesInNameOrder(std::string_view a, std::string_view b) {
    const int order = compareIgnoringCase(a, b);
    return order != 0 ? order < 0 : compareBytes(a, b) < 0;
}

}  // namespace qrx
