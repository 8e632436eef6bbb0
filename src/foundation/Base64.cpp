#include "foundation/Base64.h"

#include <cstddef>
#include <cstdint>

namespace qrx {

namespace {

constexpr std::string_view kDigits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kGroup = 3;    // bytes
constexpr std::size_t kLetters = 4;  // that they become

}  // namespace

std::string base64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + kGroup - 1) / kGroup * kLetters);
    for (std::size_t at = 0; at < bytes.size(); at += kGroup) {
        const std::string_view group = bytes.substr(at, kGroup);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < kGroup; ++i) {
            bits = bits << 8U | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
        }
        for (std::size_t i = 0; i < kLetters; ++i) {
            text += i <= group.size() ? kDigits[bits >> (18U - 6U * i) & 0x3FU] : '=';
        }
    }
    return text;
}

std::optional<std::string> bytesOfBase64(std::string_view text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); at += kLetters) {
        std::uint32_t bits = 0;
        std::size_t digits = 0;
        for (const char letter : text.substr(at, kLetters)) {
            const std::size_t digit = kDigits.find(letter);
            if (digit == std::string_view::npos) break;
            bits |= static_cast<std::uint32_t>(digit) << (18U - 6U * digits);
            ++digits;
        }
        for (std::size_t i = 0; i + 1 < digits; ++i) {
            bytes += static_cast<char>(bits >> (16U - 8U * i) & 0xFFU);
        }
    }
    if (base64(bytes) != text) return std::nullopt;  // padding and unused bits included
    return bytes;
}

}  // namespace qrx
