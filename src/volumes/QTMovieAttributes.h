#pragma once

#include <optional>
#include <string>

#include "readers/MovieReader.h"

namespace qrx {

struct MovieSize {
    double width = 0;  ///< pixels
    double height = 0;
};

/// What an opened movie tells about itself as a whole; each may be missing.
struct QTMovieAttributes {
    std::optional<MovieSize> naturalSize;
    std::optional<MovieTime> modificationTime;
    std::optional<std::string> displayName;
    std::optional<MovieTime> creationTime;
};

/// A movie without a picture has no natural size.
[[nodiscard]] QTMovieAttributes attributesOfMovie(const MovieDescription& movie);

}  // namespace qrx
