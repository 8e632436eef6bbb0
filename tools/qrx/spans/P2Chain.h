#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx::tool {

/// How a clip XML names another clip of the recording.
struct P2Link {
    std::string identifier;                 ///< global clip identifier
    std::optional<std::string> clipName{};  ///< not every camera writes it

    bool operator==(const P2Link&) const = default;
};

/// A clip's place in a spanned recording, as its clip XML tells it.
struct P2Piece {
    FilePath path;
    std::string shot;  ///< the recording's global identifier
    P2Link self;
    std::optional<P2Link> top{};  ///< the first piece
    std::optional<P2Link> previous{};
    std::optional<P2Link> next{};
};

/// From one reading of the clip XML; nothing when it cannot be read, names no clip or no shot, or
/// the clip is no piece of a spanned recording.
[[nodiscard]] std::optional<P2Piece> readP2Piece(const FilePath& video, const FilePath& clipXml);

/// A recording as far as its links tell it.
struct P2Chain {
    std::vector<std::size_t> order{};  ///< indexes of the pieces, in playing order
    /// Pieces that others name and that are not there. Where several in a row are missing, nobody
    /// names those in the middle.
    std::vector<P2Link> missing{};
    bool isWhole = false;  ///< one chain, without gap or loop
};

/// Follows the links by identifier, forwards and backwards, so that a recording with gaps or
/// without names still gets its order as far as it is known. Linear in the number of pieces.
[[nodiscard]] P2Chain p2Chain(const std::vector<P2Piece>& pieces);

}  // namespace qrx::tool
