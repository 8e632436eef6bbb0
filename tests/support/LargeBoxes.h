#pragma once

#include <string>
#include <string_view>

namespace qrx::test {

/// The movie with 64-bit numbers wherever a file of more than 4 GB has them: every box of the file,
/// and every box of its header down to the sample tables, states its size in 64 bits, and the
/// tables of chunks have 64-bit offsets (`co64`), moved to where the media now lies.
///
/// Throws std::invalid_argument for a movie in fragments, which state where they lie themselves,
/// and for what is no run of boxes.
[[nodiscard]] std::string withLargeBoxes(std::string_view movie);

}  // namespace qrx::test
