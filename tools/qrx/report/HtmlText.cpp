#include "qrx/report/HtmlText.h"

#include <array>
#include <cmath>

#include <fmt/core.h>

#include "qrx/ShownText.h"

namespace qrx::tool {

std::string htmlText(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&#39;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string htmlShown(std::string_view bytes) {
    return htmlText(shown(bytes));
}

std::string sizeForPeople(std::uint64_t bytes) {
    constexpr std::array<std::string_view, 5> kUnits{"kB", "MB", "GB", "TB", "PB"};
    constexpr double kStep = 1000;
    constexpr double kRoundsUp = 999.995;
    if (bytes < 1000) return fmt::format("{} B", bytes);
    double value = static_cast<double>(bytes) / kStep;
    std::size_t unit = 0;
    while (value >= kRoundsUp && unit + 1 < kUnits.size()) {
        value /= kStep;
        ++unit;
    }
    return fmt::format("{:.2f} {}", value, kUnits.at(unit));
}

std::string durationForPeople(double seconds) {
    constexpr std::int64_t kTenthsPerMinute = 600;
    constexpr std::int64_t kTenthsPerHour = 36000;
    constexpr double kMost = 1e12;
    if (!(seconds >= 0) || seconds > kMost) return std::string(kNotKnown);
    const auto tenths = static_cast<std::int64_t>(std::llround(seconds * 10));
    if (tenths < kTenthsPerHour) {
        return fmt::format("{}:{:02}.{}", tenths / kTenthsPerMinute, tenths % kTenthsPerMinute / 10,
                           tenths % 10);
    }
    const auto whole = static_cast<std::int64_t>(std::llround(seconds));
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole % 3600 / 60, whole % 60);
}

std::string countForPeople(std::uint64_t count) {
    std::string text = fmt::format("{}", count);
    for (std::size_t at = text.size(); at > 3;) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", countForPeople(count), count == 1 ? one : many);
}

}  // namespace qrx::tool
