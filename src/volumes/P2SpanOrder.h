#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx {

/// What a clip's XML says of its place in a spanned recording.
struct P2SpanPiece {
    enum class Place : std::uint8_t { first, middle, last };

    FilePath path;
    Place place = Place::first;
    bool hasContent = false;                  ///< there is an element ClipContent
    std::optional<std::string> clipName;      ///< of the clip itself, in ClipContent
    std::optional<std::string> previousName;  ///< of the clip before it
};

/// What the clip XML at `clipXml` says of the clip `video`; nothing when it cannot be read or the
/// clip is no piece of a spanned recording.
[[nodiscard]] std::optional<P2SpanPiece> p2SpanPiece(const FilePath& video,
                                                     const FilePath& clipXml);

/// The pieces in playing order: the first, then each that names the one before it, then the last.
/// Nothing where the chain breaks, or where first or last piece are missing. Of several first or
/// last pieces the later in the list counts.
///
/// A piece without ClipContent ends the search for the chain: the result is then the first piece,
/// the middle pieces not yet chained, and the last. KEPT: those chained before it are lost.
[[nodiscard]] std::optional<FilePaths> p2PlayingOrder(const std::vector<P2SpanPiece>& pieces);

}  // namespace qrx
