#include "readers/QuickTimeReader.h"

#include <algorithm>
#include <array>

#include "readers/MovieHeader.h"

namespace qrx {

namespace {

// "jP  " opens Motion JPEG 2000, "pnot" and "PICT" old files with a preview, "uuid" files of some
// recorders; the segment types open pieces of a stream, which may hold a movie header too.
constexpr std::array kFirstBoxes{
    fourCharacters("ftyp"), fourCharacters("moov"), fourCharacters("mdat"), fourCharacters("wide"),
    fourCharacters("free"), fourCharacters("skip"), fourCharacters("junk"), fourCharacters("pnot"),
    fourCharacters("PICT"), fourCharacters("uuid"), fourCharacters("udta"), fourCharacters("meta"),
    fourCharacters("jP  "), fourCharacters("prfl"), fourCharacters("pdin"), fourCharacters("styp"),
    fourCharacters("sidx"), fourCharacters("moof"), fourCharacters("emsg"), fourCharacters("prft"),
};

bool mayComeFirst(std::uint32_t type) {
    return std::find(kFirstBoxes.begin(), kFirstBoxes.end(), type) != kFirstBoxes.end();
}

}  // namespace

std::optional<MovieDescription> describeQuickTimeMovie(ByteWindow& window) {
    BoxReader boxes(window, 0, window.size());
    while (const auto box = boxes.next()) {
        if (box->start == 0 && !mayComeFirst(box->type)) return std::nullopt;
        if (box->type != fourCharacters("moov")) continue;
        window.prefetch(box->payload, box->payloadSize());
        if (auto movie = describeMovieHeader(window, *box)) return movie;
    }
    return std::nullopt;
}

}  // namespace qrx
