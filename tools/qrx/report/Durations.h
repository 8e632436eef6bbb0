#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qrx::tool {

// How long a clip runs, read from what cameras and tools write. Seconds; nothing where the text
// does not say, or says 0.

/// Frames per second that a camera means by its name of a rate: "29.97p", "59.94i" (29.97 frames),
/// "23.98", "50i" (25 frames), "25". The rates of NTSC are exact: 30000/1001.
[[nodiscard]] std::optional<double> framesPerSecond(std::string_view rateName);

/// "1001/30000": seconds per edit unit.
[[nodiscard]] std::optional<double> secondsOfEditUnits(std::string_view units,
                                                       std::string_view secondsPerUnit);

/// "00:01:02.03", as the ffmpeg tool writes it; nothing for "N/A".
[[nodiscard]] std::optional<double> secondsOfClock(std::string_view text);

/// From the first to the end of the last frame. Nothing when either is no timecode or the last
/// stands before the first, as where a recording went on past midnight.
[[nodiscard]] std::optional<double> secondsBetween(std::string_view firstTimecode,
                                                   std::string_view lastTimecode,
                                                   double framesPerSecond, bool isDropFrame);

}  // namespace qrx::tool
