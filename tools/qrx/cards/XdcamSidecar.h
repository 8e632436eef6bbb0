#pragma once

#include <string>

#include "qrx/cards/AvchdIndex.h"

namespace qrx::tool {

/// What the sidecar of an XDCAM clip says.
struct XdcamFacts {
    std::string umid;  ///< 64 hex digits
    StartTimecode start;
    unsigned frames = 0;        ///< length, at most one second
    unsigned timecodeBase = 0;  ///< labels a second: 25 or 30; counted without skipping
    std::string rate;           ///< as the cameras write it: "29.97p", "25p"
    std::string codec;
};

/// The XML file beside a clip, of which the cameras that share it write C0001M01.XML or the like.
[[nodiscard]] std::string nonRealTimeMeta(const XdcamFacts& facts);

}  // namespace qrx::tool
