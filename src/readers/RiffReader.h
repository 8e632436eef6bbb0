#pragma once

#include <optional>

#include "readers/ByteWindow.h"
#include "readers/MovieReader.h"

namespace qrx {

/// An AVI (OpenDML included: its further RIFF parts hold media only) or WAV file (RIFF, RF64,
/// BW64). The size that the RIFF header states is not asked: recorders that were interrupted leave
/// it at 0. An AVI is one when its header list has a main header or a stream; each stream is a
/// track. A WAV is one when its format chunk names at least one channel; it has one sound track.
[[nodiscard]] std::optional<MovieDescription> describeRiffMovie(ByteWindow& window);

}  // namespace qrx
