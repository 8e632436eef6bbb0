#include "qrx/Base64.h"

#include <cstddef>
#include <cstdint>

namespace qrx::tool {

std::string base64(std::string_view bytes) {
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::size_t kGroup = 3;
    std::string text;
    text.reserve((bytes.size() + kGroup - 1) / kGroup * 4);
    for (std::size_t at = 0; at < bytes.size(); at += kGroup) {
        const std::string_view group = bytes.substr(at, kGroup);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < kGroup; ++i) {
            bits = bits << 8U | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            text += i <= group.size() ? kDigits[bits >> (18U - 6U * i) & 0x3FU] : '=';
        }
    }
    return text;
}

}  // namespace qrx::tool
