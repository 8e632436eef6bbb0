#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx {

class ByteSource;

enum class TrackMedia { video, sound, timecode, text, other };

struct MovieTrack {
    TrackMedia media = TrackMedia::other;
    std::string handlerType;  ///< four characters as the file has them, e.g. "vide"; AVI: "vids"
    double width = 0;         ///< natural size in pixels; 0 where the track has none
    double height = 0;
};

/// Seconds since 1970-01-01 00:00:00 UTC.
using MovieTime = std::int64_t;

/// What a movie's headers say about it.
struct MovieDescription {
    std::vector<MovieTrack> tracks;
    double naturalWidth = 0;  ///< pixels, of the first video track that has a size; 0 without one
    double naturalHeight = 0;
    std::optional<std::string> displayName;  ///< from the user data, else the file's name
    std::optional<MovieTime> creationTime;   ///< absent when the header says 0
    std::optional<MovieTime> modificationTime;
    /// Of the whole movie, from the movie header; absent where it says 0, as fragmented files do,
    /// or that it is not known, and for files that have no such header (AVI, WAV, AIFF).
    std::optional<double> durationSeconds{};

    [[nodiscard]] std::size_t count(TrackMedia media) const;
};

/// Opens movies: QuickTime and ISO base media files (mov, mp4, m4v, m4a, 3gp), AVI, WAV and AIFF.
///
/// Reads box headers and the movie header only, never media, so the time does not grow with the
/// file. 32- and 64-bit boxes, size 0 to the end, movie header anywhere, fragmented files,
/// compressed movie headers (at most 64 MiB expanded), files without a type box. Lengths from the
/// file are held against what is left; depth, allocation and the number of boxes are bounded.
class MovieReader {
public:
    /// What is in the file at `path`; nothing when it is missing, not a regular file, unreadable or
    /// not a movie.
    [[nodiscard]] std::optional<MovieDescription> open(const FilePath& path) const;
};

/// What MovieReader says about the bytes of `source`. Without a name in the user data there is no
/// `displayName`, for a source has none of its own.
[[nodiscard]] std::optional<MovieDescription> describeMovie(const ByteSource& source);

}  // namespace qrx
