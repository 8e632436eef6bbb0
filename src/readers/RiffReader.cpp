#include "readers/RiffReader.h"

#include <cmath>

#include "readers/ChunkReader.h"
#include "readers/MovieHeader.h"

namespace qrx {

namespace {

constexpr std::uint64_t kFirstChunk = 12;  // "RIFF", size, form
constexpr std::uint32_t kSizeInDs64 = 0xFFFFFFFF;

ChunkReader chunksOf(ByteWindow& window, const Chunk& list) {
    // the first four bytes of a list are its kind
    return {window, ByteOrder::little, list.payload + 4, list.end};
}

/// The kind of a LIST chunk; 0 for any other chunk.
std::uint32_t listKind(ByteWindow& window, const Chunk& chunk) {
    if (chunk.type != fourCharacters("LIST")) return 0;
    const auto kind = contentBytes(window, chunk, 0, 4);
    return kind ? bigEndian32(*kind) : 0;
}

std::optional<std::string> nameInInfo(ByteWindow& window, const Chunk& info) {
    ChunkReader chunks = chunksOf(window, info);
    while (const auto chunk = chunks.next()) {
        if (chunk->type == fourCharacters("INAM")) return nameInChunk(window, *chunk);
    }
    return std::nullopt;
}

TrackMedia mediaOfStream(std::uint32_t type) {
    switch (type) {
        case fourCharacters("vids"):
        case fourCharacters("iavs"):  // DV with its sound inside: one stream, shown as video
            return TrackMedia::video;
        case fourCharacters("auds"):
            return TrackMedia::sound;
        case fourCharacters("txts"):
            return TrackMedia::text;
        default:
            return TrackMedia::other;
    }
}

/// A picture height below 0 says that the rows stand from the top.
double magnitude(std::uint32_t signedNumber) {
    return std::abs(static_cast<double>(static_cast<std::int32_t>(signedNumber)));
}

std::optional<MovieTrack> describeStream(ByteWindow& window, const Chunk& strl) {
    std::optional<MovieTrack> track;
    ChunkReader chunks = chunksOf(window, strl);
    while (const auto chunk = chunks.next()) {
        if (chunk->type == fourCharacters("strh") && !track) {
            const auto type = contentBytes(window, *chunk, 0, 4);
            if (!type) return std::nullopt;
            const std::uint32_t code = bigEndian32(*type);
            track = MovieTrack{mediaOfStream(code), fourCharacterText(code)};
        } else if (chunk->type == fourCharacters("strf") && track && track->handlerType == "vids") {
            if (const auto size = contentBytes(window, *chunk, 4, 8)) {
                track->width = magnitude(littleEndian32(*size));
                track->height = magnitude(littleEndian32(size->subspan(4)));
            }
        }
    }
    return track;
}

/// NO when the list holds neither a main header nor a stream.
bool readHeaderList(ByteWindow& window, const Chunk& hdrl, MovieDescription& movie) {
    bool found = false;
    double width = 0;
    double height = 0;
    ChunkReader chunks = chunksOf(window, hdrl);
    while (const auto chunk = chunks.next()) {
        if (chunk->type == fourCharacters("avih")) {
            if (const auto size = contentBytes(window, *chunk, 32, 8)) {
                found = true;
                width = littleEndian32(*size);
                height = littleEndian32(size->subspan(4));
            }
        } else if (listKind(window, *chunk) == fourCharacters("strl") &&
                   movie.tracks.size() < kMostTracks) {
            if (auto track = describeStream(window, *chunk)) {
                movie.tracks.push_back(std::move(*track));
            }
        }
    }
    for (MovieTrack& track : movie.tracks) {
        if (track.media == TrackMedia::video && (track.width <= 0 || track.height <= 0)) {
            track.width = width;
            track.height = height;
        }
    }
    takeNaturalSizeFromTracks(movie);
    return found || !movie.tracks.empty();
}

std::optional<MovieDescription> describeAvi(ByteWindow& window) {
    MovieDescription movie;
    bool hasHeaderList = false;
    ChunkReader chunks(window, ByteOrder::little, kFirstChunk, window.size());
    while (const auto chunk = chunks.next()) {
        const std::uint32_t kind = listKind(window, *chunk);
        if (kind == fourCharacters("movi"))
            break;  // names that come after the media are not sought
        if (kind == fourCharacters("hdrl") && !hasHeaderList) {
            hasHeaderList = readHeaderList(window, *chunk, movie);
        } else if (kind == fourCharacters("INFO")) {
            movie.displayName = nameInInfo(window, *chunk);
        }
    }
    if (!hasHeaderList) return std::nullopt;
    return movie;
}

/// The size of the sample data of an RF64 file, which stands in a chunk of its own.
std::uint64_t dataSizeInDs64(ByteWindow& window, const Chunk& ds64) {
    const auto size = contentBytes(window, ds64, 8, 8);  // after the size of the whole
    if (!size) return 0;
    return littleEndian32(*size) | (std::uint64_t{littleEndian32(size->subspan(4))} << 32U);
}

bool namesAChannel(ByteWindow& window, const Chunk& fmt) {
    constexpr std::size_t kShortestFormat = 14;
    const auto format = contentBytes(window, fmt, 0, kShortestFormat);
    return format && ((*format)[2] != std::byte{0} || (*format)[3] != std::byte{0});
}

std::optional<MovieDescription> describeWav(ByteWindow& window) {
    MovieDescription movie;
    std::uint64_t dataSize = 0;
    ChunkReader chunks(window, ByteOrder::little, kFirstChunk, window.size());
    while (const auto chunk = chunks.next()) {
        if (chunk->type == fourCharacters("ds64")) {
            dataSize = dataSizeInDs64(window, *chunk);
        } else if (chunk->type == fourCharacters("fmt ") && movie.tracks.empty()) {
            if (!namesAChannel(window, *chunk)) return std::nullopt;
            movie.tracks.push_back({TrackMedia::sound, "soun"});
        } else if (listKind(window, *chunk) == fourCharacters("INFO")) {
            movie.displayName = nameInInfo(window, *chunk);
        } else if (chunk->type == fourCharacters("data")) {
            if (!movie.tracks.empty()) break;  // names after the samples are not sought
            if (chunk->statedSize == kSizeInDs64) chunks.skipContents(*chunk, dataSize);
        }
    }
    if (movie.tracks.empty()) return std::nullopt;
    return movie;
}

}  // namespace

std::optional<MovieDescription> describeRiffMovie(ByteWindow& window) {
    const auto form = window.at(8, 4);
    if (!form) return std::nullopt;
    const std::uint32_t kind = bigEndian32(*form);
    if (kind == fourCharacters("AVI ")) return describeAvi(window);
    if (kind == fourCharacters("WAVE")) return describeWav(window);
    return std::nullopt;
}

}  // namespace qrx
