#pragma once

#include <optional>

#include "readers/BoxReader.h"
#include "readers/MovieReader.h"

namespace qrx {

/// Tracks beyond these are not counted. A film with every language has some 200.
inline constexpr std::size_t kMostTracks = 100'000;

/// What the movie header in the box `moov` says. A track is a `trak` with a readable media handler;
/// cover art in the user data is none. A compressed header is expanded, but not one inside another.
/// @return nothing when it holds neither a movie header box nor a track. `displayName` is set only
///         where the user data has a name.
[[nodiscard]] std::optional<MovieDescription> describeMovieHeader(ByteWindow& window,
                                                                  const Box& moov);

/// Media type of a track's handler.
[[nodiscard]] TrackMedia trackMediaForHandler(std::uint32_t handler);

/// Width and height of the movie: of its first video track that has a size.
void takeNaturalSizeFromTracks(MovieDescription& movie);

}  // namespace qrx
