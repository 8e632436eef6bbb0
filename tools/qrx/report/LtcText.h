#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qrx::tool {

struct LtcReading {
    std::string timecode;  ///< ";" before the frames for drop frame
    bool isDropFrame = false;

    bool operator==(const LtcReading&) const = default;
};

/// The timecode in a sidecar of XDCAM: eight hex digits, frames first, two decimal digits a byte.
/// The highest bits of the bytes are flags of the recorded signal; 40 hex in the frames is drop
/// frame. Nothing when the text is something else.
[[nodiscard]] std::optional<LtcReading> readLtc(std::string_view digits);

}  // namespace qrx::tool
