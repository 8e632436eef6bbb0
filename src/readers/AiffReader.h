#pragma once

#include <optional>

#include "readers/ByteWindow.h"
#include "readers/MovieReader.h"

namespace qrx {

/// An AIFF or AIFF-C file: one when its common chunk names at least one channel; it has one sound
/// track.
[[nodiscard]] std::optional<MovieDescription> describeAiffMovie(ByteWindow& window);

}  // namespace qrx
