#pragma once

#include <optional>

#include "readers/ByteWindow.h"
#include "readers/MovieReader.h"

namespace qrx {

/// A QuickTime or ISO base media file. It begins with a box of a kind that such files begin with,
/// and somewhere at the top there is a movie header (`moov`); the boxes before it are stepped over,
/// whatever their type. A file whose first box is of another kind is refused after one read.
[[nodiscard]] std::optional<MovieDescription> describeQuickTimeMovie(ByteWindow& window);

}  // namespace qrx
