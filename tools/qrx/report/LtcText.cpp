#include "qrx/report/LtcText.h"

#include <array>
#include <charconv>

#include <fmt/core.h>

namespace qrx::tool {

namespace {

constexpr unsigned kDropFrame = 0x40;
// What is left of frames, seconds, minutes and hours without their flags.
constexpr std::array<unsigned, 4> kDigits{0x3F, 0x7F, 0x7F, 0x3F};
constexpr unsigned kBitsPerDigit = 4;
constexpr unsigned kDigit = 0xF;

}  // namespace

std::optional<LtcReading> readLtc(std::string_view digits) {
    if (digits.size() != 2 * kDigits.size()) return std::nullopt;
    std::array<unsigned, kDigits.size()> values{};
    bool isDropFrame = false;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string_view pair = digits.substr(2 * i, 2);
        unsigned byte = 0;
        const auto read = std::from_chars(pair.data(), pair.data() + pair.size(), byte, 16);
        if (read.ec != std::errc() || read.ptr != pair.data() + pair.size()) return std::nullopt;
        if (i == 0) isDropFrame = (byte & kDropFrame) != 0;
        const unsigned tens = (byte & kDigits.at(i)) >> kBitsPerDigit;
        const unsigned ones = byte & kDigit;
        if (tens > 9 || ones > 9) return std::nullopt;
        values.at(i) = tens * 10 + ones;
    }
    return LtcReading{.timecode = fmt::format("{:02}:{:02}:{:02}{}{:02}", values[3], values[2],
                                              values[1], isDropFrame ? ';' : ':', values[0]),
                      .isDropFrame = isDropFrame};
}

}  // namespace qrx::tool
