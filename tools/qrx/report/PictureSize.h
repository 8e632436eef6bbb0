#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qrx::tool {

struct PictureSize {
    std::uint32_t width = 0;  ///< pixels
    std::uint32_t height = 0;

    bool operator==(const PictureSize&) const = default;
};

/// Of the first video stream in a report of the ffmpeg tool: ", 1920x1080" in its line.
[[nodiscard]] std::optional<PictureSize> pictureSizeIn(std::string_view report);

}  // namespace qrx::tool
