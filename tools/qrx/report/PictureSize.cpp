#include "qrx/report/PictureSize.h"

#include <charconv>

namespace qrx::tool {

namespace {

/// "1920x1080" at the start of `text`.
std::optional<PictureSize> sizeAt(std::string_view text) {
    PictureSize size;
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    if (width.ec != std::errc() || width.ptr == end || *width.ptr != 'x') return std::nullopt;
    const auto height = std::from_chars(width.ptr + 1, end, size.height);
    if (height.ec != std::errc() || size.width == 0 || size.height == 0) return std::nullopt;
    const bool endsThere = height.ptr == end || *height.ptr == ' ' || *height.ptr == ',';
    return endsThere ? std::optional(size) : std::nullopt;
}

}  // namespace

std::optional<PictureSize> pictureSizeIn(std::string_view report) {
    const auto stream = report.find("Video: ");
    if (stream == std::string_view::npos) return std::nullopt;
    std::string_view line = report.substr(stream);
    line = line.substr(0, line.find('\n'));
    constexpr std::string_view kBetween = ", ";
    for (auto at = line.find(kBetween); at != std::string_view::npos; at = line.find(kBetween)) {
        line.remove_prefix(at + kBetween.size());
        if (const auto size = sizeAt(line)) return size;
    }
    return std::nullopt;
}

}  // namespace qrx::tool
