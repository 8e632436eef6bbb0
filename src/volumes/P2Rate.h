#pragma once

#include <optional>
#include <string>

#include "timecode/VideoFrameRate.h"

namespace qrx {

/// The frame rate that a P2 clip XML means.
///
/// @param editUnit   text of EditUnit, the length of a frame in seconds: "1001/30000". It counts
///                   alone when it is there.
/// @param frameRate  what stands in the tag FrameRate and behind it: `
/// DropFrameFlag="true">29.97i>`
/// @return  undefined without either, for an edit unit without "/" and for one with a zero.
[[nodiscard]] QRXVideoFrameRate p2FrameRate(const std::optional<std::string>& editUnit,
                                            const std::optional<std::string>& frameRate);

}  // namespace qrx
