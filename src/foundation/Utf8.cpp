#include "foundation/Utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "foundation/Text.h"

namespace qrx {

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::size_t kLongestSequence = 4;

unsigned byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

bool isContinuation(std::string_view text, std::size_t index) {
    return index < text.size() && (byteAt(text, index) & 0xC0U) == 0x80U;
}

bool isSurrogate(char32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

/// Bytes that a sequence with this first byte takes; 0 when no sequence begins so.
std::size_t sequenceLength(unsigned first) {
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return 2;
    if (first >= 0xE0 && first <= 0xEF) return 3;
    if (first >= 0xF0 && first <= 0xF4) return 4;
    return 0;
}

}  // namespace

bool isAscii(std::string_view text) noexcept {
    std::size_t at = 0;
    for (; at + sizeof(std::uint64_t) <= text.size(); at += sizeof(std::uint64_t)) {
        std::uint64_t eight = 0;
        std::memcpy(&eight, text.data() + at, sizeof eight);
        if ((eight & 0x8080808080808080U) != 0) return false;
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

Utf8Step firstUtf8Step(std::string_view text) noexcept {
    const unsigned first = byteAt(text, 0);
    const Utf8Step alone{first, 1, false};
    const std::size_t length = sequenceLength(first);
    if (length == 1) return {first, 1, true};
    if (length == 0) return alone;

    constexpr unsigned kFirstByteBits[kLongestSequence + 1] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    constexpr char32_t kSmallest[kLongestSequence + 1] = {0, 0, 0x80, 0x800, 0x10000};
    char32_t code = first & kFirstByteBits[length];
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(text, i)) return alone;
        code = (code << 6U) | (byteAt(text, i) & 0x3FU);
    }
    if (code < kSmallest[length] || code > 0x10FFFF || isSurrogate(code)) return alone;
    return {code, length, true};
}

Utf8Step lastUtf8Step(std::string_view text) noexcept {
    const std::size_t farthest = std::min(kLongestSequence, text.size());
    for (std::size_t length = 1; length <= farthest; ++length) {
        const std::string_view tail = text.substr(text.size() - length);
        const Utf8Step step = firstUtf8Step(tail);
        if (step.wellFormed && step.length == length) return step;
        if (!isContinuation(tail, 0)) break;
    }
    return {byteAt(text, text.size() - 1), 1, false};
}

void appendUtf8(std::string& text, char32_t code) {
    if (code > 0x10FFFF || isSurrogate(code)) code = kReplacement;
    const auto continuation = [](char32_t bits) {
        return static_cast<char>(0x80U | (bits & 0x3FU));
    };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0U | (code >> 6U));
        text += continuation(code);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0U | (code >> 12U));
        text += continuation(code >> 6U);
        text += continuation(code);
    } else {
        text += static_cast<char>(0xF0U | (code >> 18U));
        text += continuation(code >> 12U);
        text += continuation(code >> 6U);
        text += continuation(code);
    }
}

bool isUtf8(std::string_view text) {
    if (isAscii(text)) return true;
    while (!text.empty()) {
        const Utf8Step step = firstUtf8Step(text);
        if (!step.wellFormed) return false;
        text.remove_prefix(step.length);
    }
    return true;
}

std::u16string utf16Units(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const Utf8Step step = firstUtf8Step(text);
        if (step.code < 0x10000) {
            units += static_cast<char16_t>(step.code);
        } else {
            const char32_t offset = step.code - 0x10000;
            units += static_cast<char16_t>(0xD800U + (offset >> 10U));
            units += static_cast<char16_t>(0xDC00U + (offset & 0x3FFU));
        }
        text.remove_prefix(step.length);
    }
    return units;
}

std::string fromUtf16Units(std::u16string_view units) {
    std::string text;
    text.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t code = units[i];
        const bool pair = code >= 0xD800 && code <= 0xDBFF && i + 1 < units.size() &&
                          units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF;
        if (pair) {
            code = 0x10000 + ((code - 0xD800) << 10U) + (char32_t{units[i + 1]} - 0xDC00);
            ++i;
        }
        appendUtf8(text, code);
    }
    return text;
}

std::string characterText(char32_t code) {
    std::string text;
    appendUtf8(text, code);
    return text;
}

}  // namespace qrx
