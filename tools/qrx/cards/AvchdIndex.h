#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qrx::tool {

// The files that stand beside the clips of an AVCHD card, in the format that discs and cards share
// (type "HDMV", version 0100). Times count 45,000 a second.

/// A clip's time of day, as its maker writes it.
struct StartTimecode {
    unsigned hours = 0;
    unsigned minutes = 0;
    unsigned seconds = 0;
    unsigned frames = 0;
};

/// Where a maker keeps the start timecode: four bytes, frames first, two decimal digits a byte.
struct TimecodePlace {
    std::size_t bytesBeforeEnd = 8;  ///< at least 4
    std::uint8_t frameFlags = 0;     ///< set in the high bits of the frames byte
};

struct TransportStream {
    std::uint32_t packets = 0;  ///< of 192 bytes
    std::uint32_t firstTime = 0;
    std::uint32_t lastTime = 0;
    bool isMpeg2 = false;       ///< else H.264
    bool hasMpegAudio = false;  ///< else AC-3
};

/// INDEX.BDM
[[nodiscard]] std::string indexFile();
/// MOVIEOBJ.BDM
[[nodiscard]] std::string movieObjectFile();
/// CLIPINF/<name>.CPI, some 700 bytes, with the maker's block at its end.
[[nodiscard]] std::string clipInformationFile(const TransportStream& stream,
                                              const StartTimecode& start,
                                              const TimecodePlace& place);
/// PLAYLIST/<name>.MPL: plays the clips, named "00000" and so on, one after another.
[[nodiscard]] std::string playlistFile(const std::vector<std::string>& clips,
                                       const TransportStream& stream);

}  // namespace qrx::tool
