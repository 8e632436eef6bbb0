#include "platform/linux/UnicodeTextRules.h"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>

#include <glib.h>

namespace qrx::platform {

namespace {

constexpr gunichar kCapitalIWithDot = 0x0130;
constexpr gunichar kCombiningDotAbove = 0x0307;
constexpr gunichar kCapitalSigma = 0x03A3;
constexpr gunichar kFinalSigma = 0x03C2;

/// One character, or one byte that begins none.
struct Piece {
    std::string_view bytes;
    std::optional<gunichar> code;
};

Piece firstPiece(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) return {text.substr(0, 1), lead};
    const gunichar code = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    if (code == static_cast<gunichar>(-1) || code == static_cast<gunichar>(-2)) {
        return {text.substr(0, 1), std::nullopt};
    }
    return {text.substr(0, static_cast<std::size_t>(g_unichar_to_utf8(code, nullptr))), code};
}

void append(std::string& text, gunichar code) {
    std::array<char, 6> bytes{};
    const int length = g_unichar_to_utf8(code, bytes.data());
    text.append(bytes.data(), static_cast<std::size_t>(length));
}

/// Upper case of one character outside ASCII, which may be several characters. g_utf8_strup looks
/// at the locale only for "i" and for what follows an "i", neither of which it is shown here.
void appendUpperCased(std::string& text, std::string_view character) {
    const std::unique_ptr<gchar, decltype(&g_free)> upper(
        g_utf8_strup(character.data(), static_cast<gssize>(character.size())), &g_free);
    text.append(upper.get());
}

/// Whether the first character of `text` that is no mark is a letter.
bool letterFollows(std::string_view text) {
    while (!text.empty()) {
        const Piece piece = firstPiece(text);
        if (!piece.code) return false;
        if (!g_unichar_ismark(*piece.code)) return g_unichar_isalpha(*piece.code) != 0;
        text.remove_prefix(piece.bytes.size());
    }
    return false;
}

}  // namespace

std::string UnicodeTextRules::upperCased(std::string_view text) const {
    std::string upper;
    upper.reserve(text.size());
    while (!text.empty()) {
        const Piece piece = firstPiece(text);
        if (!piece.code) {
            upper.append(piece.bytes);
        } else if (*piece.code < 0x80) {
            upper.push_back(g_ascii_toupper(static_cast<gchar>(*piece.code)));
        } else {
            appendUpperCased(upper, piece.bytes);
        }
        text.remove_prefix(piece.bytes.size());
    }
    return upper;
}

std::string UnicodeTextRules::lowerCased(std::string_view text) const {
    std::string lower;
    lower.reserve(text.size());
    bool insideWord = false;  // a letter came before, with nothing but marks since
    while (!text.empty()) {
        const Piece piece = firstPiece(text);
        text.remove_prefix(piece.bytes.size());
        if (!piece.code) {
            lower.append(piece.bytes);
            insideWord = false;
            continue;
        }
        const gunichar code = *piece.code;
        if (code == kCapitalIWithDot) {
            lower.push_back('i');
            append(lower, kCombiningDotAbove);
        } else if (code == kCapitalSigma && insideWord && !letterFollows(text)) {
            append(lower, kFinalSigma);
        } else {
            append(lower, g_unichar_tolower(code));
        }
        insideWord = g_unichar_isalpha(code) != 0 || (insideWord && g_unichar_ismark(code) != 0);
    }
    return lower;
}

bool UnicodeTextRules::isDecimalDigit(char32_t code) const {
    return g_unichar_type(code) == G_UNICODE_DECIMAL_NUMBER;
}

bool UnicodeTextRules::isLetterOrMark(char32_t code) const {
    return g_unichar_isalpha(code) != 0 || g_unichar_ismark(code) != 0;
}

}  // namespace qrx::platform
