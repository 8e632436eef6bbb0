#include "readers/AiffReader.h"

#include "readers/ChunkReader.h"

namespace qrx {

std::optional<MovieDescription> describeAiffMovie(ByteWindow& window) {
    const auto form = window.at(8, 4);
    if (!form) return std::nullopt;
    const std::uint32_t kind = bigEndian32(*form);
    if (kind != fourCharacters("AIFF") && kind != fourCharacters("AIFC")) return std::nullopt;

    constexpr std::uint64_t kFirstChunk = 12;    // "FORM", size, kind
    constexpr std::size_t kShortestCommon = 18;  // channels, frames, bits, rate
    MovieDescription movie;
    ChunkReader chunks(window, ByteOrder::big, kFirstChunk, window.size());
    while (const auto chunk = chunks.next()) {
        if (chunk->type == fourCharacters("COMM") && movie.tracks.empty()) {
            const auto common = contentBytes(window, *chunk, 0, kShortestCommon);
            if (!common || bigEndian16(*common) == 0) return std::nullopt;
            movie.tracks.push_back({TrackMedia::sound, "soun"});
        } else if (chunk->type == fourCharacters("NAME") && !movie.displayName) {
            movie.displayName = nameInChunk(window, *chunk);
        } else if (chunk->type == fourCharacters("SSND") && !movie.tracks.empty()) {
            break;  // names after the samples are not sought
        }
    }
    if (movie.tracks.empty()) return std::nullopt;
    return movie;
}

}  // namespace qrx
