#pragma once

#include <optional>
#include <string>
#include <vector>

#include "readers/MovieReader.h"
#include "support/FfmpegMedia.h"

namespace qrx::test {

/// Tracks by media: "video 1, sound 1, timecode 0, text 0, other 0".
[[nodiscard]] inline std::string trackText(std::size_t video, std::size_t sound,
                                           std::size_t timecode, std::size_t text,
                                           std::size_t other) {
    return "video " + std::to_string(video) + ", sound " + std::to_string(sound) + ", timecode " +
           std::to_string(timecode) + ", text " + std::to_string(text) + ", other " +
           std::to_string(other);
}

/// As MovieReader sees them; "no movie" where it does not open the file.
[[nodiscard]] inline std::string tracksOf(const std::optional<MovieDescription>& movie) {
    if (!movie) return "no movie";
    return trackText(movie->count(TrackMedia::video), movie->count(TrackMedia::sound),
                     movie->count(TrackMedia::timecode), movie->count(TrackMedia::text),
                     movie->count(TrackMedia::other));
}

/// As ffprobe sees them. It has no type of its own for timecode and for QuickTime text: both are
/// "data" with a tag.
[[nodiscard]] inline std::string probedTracks(const std::string& path) {
    std::size_t video = 0;
    std::size_t sound = 0;
    std::size_t timecode = 0;
    std::size_t text = 0;
    std::size_t other = 0;
    const std::vector<ProbedStream> streams = probedStreams(path);
    for (const ProbedStream& stream : streams) {
        if (stream.codecType == "video") {
            ++video;
        } else if (stream.codecType == "audio") {
            ++sound;
        } else if (stream.codecTag == "tmcd") {
            ++timecode;
        } else if (stream.codecType == "subtitle" || stream.codecTag == "text") {
            ++text;
        } else {
            ++other;
        }
    }
    return streams.empty() ? "no movie" : trackText(video, sound, timecode, text, other);
}

}  // namespace qrx::test
