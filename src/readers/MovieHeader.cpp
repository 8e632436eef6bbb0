#include "readers/MovieHeader.h"

#include <algorithm>

#include "readers/CompressedMovieHeader.h"
#include "readers/MovieNames.h"

namespace qrx {

namespace {

constexpr MovieTime kSecondsFrom1904To1970 = 2'082'844'800;
constexpr double kFixedPointOne = 65536;  // 16.16

struct PictureSize {
    double width = 0;
    double height = 0;
};

std::optional<MovieTime> timeSince1970(std::uint64_t secondsSince1904) {
    if (secondsSince1904 == 0 || secondsSince1904 > INT64_MAX) return std::nullopt;
    return static_cast<MovieTime>(secondsSince1904) - kSecondsFrom1904To1970;
}

/// NO when the box is too short for the times of its version.
bool takeTimes(MovieDescription& movie, ByteWindow& window, const Box& mvhd) {
    const auto version = payloadBytes(window, mvhd, 0, 4);
    if (!version) return false;
    if (std::to_integer<int>(version->front()) == 1) {
        const auto times = payloadBytes(window, mvhd, 4, 16);
        if (!times) return false;
        movie.creationTime = timeSince1970(bigEndian64(*times));
        movie.modificationTime = timeSince1970(bigEndian64(times->subspan(8)));
    } else {
        const auto times = payloadBytes(window, mvhd, 4, 8);
        if (!times) return false;
        movie.creationTime = timeSince1970(bigEndian32(*times));
        movie.modificationTime = timeSince1970(bigEndian32(times->subspan(4)));
    }
    return true;
}

/// Time scale and duration stand behind the times.
void takeDuration(MovieDescription& movie, ByteWindow& window, const Box& mvhd) {
    const auto version = payloadBytes(window, mvhd, 0, 4);
    if (!version) return;
    const bool isLong = std::to_integer<int>(version->front()) == 1;
    const auto fields =
        isLong ? payloadBytes(window, mvhd, 20, 12) : payloadBytes(window, mvhd, 12, 8);
    if (!fields) return;
    const std::uint32_t unitsPerSecond = bigEndian32(*fields);
    const std::uint64_t units =
        isLong ? bigEndian64(fields->subspan(4)) : bigEndian32(fields->subspan(4));
    const std::uint64_t notKnown = isLong ? UINT64_MAX : UINT32_MAX;
    if (unitsPerSecond == 0 || units == 0 || units == notKnown) return;
    movie.durationSeconds = static_cast<double>(units) / unitsPerSecond;
}

/// Of the track as it is shown, before any rotation.
PictureSize sizeInTrackHeader(ByteWindow& window, const Box& tkhd) {
    const auto version = payloadBytes(window, tkhd, 0, 1);
    if (!version) return {};
    const std::uint64_t offset = std::to_integer<int>(version->front()) == 1 ? 88 : 76;
    const auto size = payloadBytes(window, tkhd, offset, 8);
    if (!size) return {};
    return {bigEndian32(*size) / kFixedPointOne, bigEndian32(size->subspan(4)) / kFixedPointOne};
}

/// Of the first sample description, for writers that leave the track header's size at 0.
PictureSize sizeInSampleDescription(ByteWindow& window, const Box& mdia) {
    std::optional<Box> box = mdia;
    for (const std::uint32_t type :
         {fourCharacters("minf"), fourCharacters("stbl"), fourCharacters("stsd")}) {
        box = firstBox(window, *box, type);
        if (!box) return {};
    }
    constexpr std::uint64_t kWidthInFirstEntry = 8 + 32;  // version and count, then the entry
    const auto size = payloadBytes(window, *box, kWidthInFirstEntry, 4);
    if (!size) return {};
    return {static_cast<double>(bigEndian16(*size)),
            static_cast<double>(bigEndian16(size->subspan(2)))};
}

std::optional<std::uint32_t> handlerOfMedia(ByteWindow& window, const Box& mdia) {
    const auto hdlr = firstBox(window, mdia, fourCharacters("hdlr"));
    if (!hdlr) return std::nullopt;
    const auto handler = payloadBytes(window, *hdlr, 8, 4);  // after version and component type
    if (!handler) return std::nullopt;
    return bigEndian32(*handler);
}

std::optional<MovieTrack> describeTrack(ByteWindow& window, const Box& trak) {
    PictureSize size;
    std::optional<std::uint32_t> handler;
    Box media;
    BoxReader boxes(window, trak);
    while (const auto box = boxes.next()) {
        if (box->type == fourCharacters("tkhd")) size = sizeInTrackHeader(window, *box);
        if (box->type == fourCharacters("mdia") && !handler) {
            media = *box;
            handler = handlerOfMedia(window, media);
        }
    }
    if (!handler) return std::nullopt;

    MovieTrack track{trackMediaForHandler(*handler), fourCharacterText(*handler), size.width,
                     size.height};
    if (track.media == TrackMedia::video && (track.width <= 0 || track.height <= 0)) {
        const PictureSize coded = sizeInSampleDescription(window, media);
        track.width = coded.width;
        track.height = coded.height;
    }
    return track;
}

enum class PackedHeader { expand, refuse };

std::optional<MovieDescription> describe(ByteWindow& window, const Box& moov, PackedHeader packed);

std::optional<MovieDescription> describePacked(ByteWindow& window, const Box& cmov) {
    const auto header = expandedMovieHeader(window, cmov);
    if (!header) return std::nullopt;
    const MemoryByteSource source(*header);
    ByteWindow expanded(source);
    const auto moov = BoxReader(expanded, 0, expanded.size()).next();
    if (!moov || moov->type != fourCharacters("moov")) return std::nullopt;
    return describe(expanded, *moov, PackedHeader::refuse);
}

std::optional<MovieDescription> describe(ByteWindow& window, const Box& moov, PackedHeader packed) {
    MovieDescription movie;
    MovieNames names;
    bool hasHeader = false;
    BoxReader boxes(window, moov);
    while (const auto box = boxes.next()) {
        if (box->type == fourCharacters("mvhd")) {
            hasHeader = takeTimes(movie, window, *box) || hasHeader;
            takeDuration(movie, window, *box);
        } else if (box->type == fourCharacters("trak")) {
            if (movie.tracks.size() >= kMostTracks) continue;
            if (auto track = describeTrack(window, *box)) movie.tracks.push_back(std::move(*track));
        } else if (box->type == fourCharacters("udta")) {
            names.readUserData(window, *box);
        } else if (box->type == fourCharacters("meta")) {
            names.readMetadata(window, *box);
        } else if (box->type == fourCharacters("cmov")) {
            if (packed == PackedHeader::refuse) return std::nullopt;
            return describePacked(window, *box);
        }
    }
    if (!hasHeader && movie.tracks.empty()) return std::nullopt;
    movie.displayName = names.best();
    takeNaturalSizeFromTracks(movie);
    return movie;
}

}  // namespace

std::optional<MovieDescription> describeMovieHeader(ByteWindow& window, const Box& moov) {
    return describe(window, moov, PackedHeader::expand);
}

TrackMedia trackMediaForHandler(std::uint32_t handler) {
    switch (handler) {
        case fourCharacters("vide"):
            return TrackMedia::video;
        case fourCharacters("soun"):
            return TrackMedia::sound;
        case fourCharacters("tmcd"):
            return TrackMedia::timecode;
        case fourCharacters("text"):
        case fourCharacters("sbtl"):
        case fourCharacters("subt"):
        case fourCharacters("clcp"):
            return TrackMedia::text;
        default:
            return TrackMedia::other;
    }
}

void takeNaturalSizeFromTracks(MovieDescription& movie) {
    const auto shown =
        std::find_if(movie.tracks.begin(), movie.tracks.end(), [](const MovieTrack& track) {
            return track.media == TrackMedia::video && track.width > 0 && track.height > 0;
        });
    if (shown == movie.tracks.end()) return;
    movie.naturalWidth = shown->width;
    movie.naturalHeight = shown->height;
}

}  // namespace qrx
