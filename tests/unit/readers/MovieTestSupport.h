#pragma once

#include <optional>
#include <string>

#include "readers/ByteSource.h"
#include "readers/MovieReader.h"

namespace qrx::test {

[[nodiscard]] inline std::optional<MovieDescription> describe(const std::string& bytes) {
    const MemoryByteSource source(std::as_bytes(std::span(bytes)));
    return describeMovie(source);
}

/// Tracks of a movie as "video, sound, timecode, text, other", e.g. "1 1 1 0 0"; "none" where the
/// bytes are no movie.
[[nodiscard]] inline std::string tracks(const std::optional<MovieDescription>& movie) {
    if (!movie) return "none";
    std::string counts;
    for (const TrackMedia media : {TrackMedia::video, TrackMedia::sound, TrackMedia::timecode,
                                   TrackMedia::text, TrackMedia::other}) {
        counts += std::to_string(movie->count(media)) + " ";
    }
    counts.pop_back();
    return counts;
}
[[nodiscard]] inline std::string tracks(const std::string& bytes) {
    return tracks(describe(bytes));
}

}  // namespace qrx::test
