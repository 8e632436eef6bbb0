#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "readers/BoxReader.h"

namespace qrx {

/// Most bytes that a compressed movie header may expand to (64 MiB).
inline constexpr std::size_t kMostExpandedHeader = std::size_t{64} << 20U;

/// Expands the movie header in the box `cmov`: `dcom` names the method, of which only "zlib" is
/// known, and `cmvd` holds the size after expansion (4 bytes) and the packed bytes.
/// @return a whole `moov` box; nothing when the method is another, the stream is damaged, or the
///         size that the box states is impossible, over kMostExpandedHeader, or exceeded.
[[nodiscard]] std::optional<std::vector<std::byte>> expandedMovieHeader(ByteWindow& window,
                                                                        const Box& cmov);

}  // namespace qrx
