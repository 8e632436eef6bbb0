#include "readers/CompressedMovieHeader.h"

#include "platform/ports/Services.h"

namespace qrx {

namespace {

// The best that deflate can do; a box that states more lies, and nothing is allocated for it.
constexpr std::uint64_t kMostExpansion = 1032;

}  // namespace

std::optional<std::vector<std::byte>> expandedMovieHeader(ByteWindow& window, const Box& cmov) {
    const auto dcom = firstBox(window, cmov, fourCharacters("dcom"));
    if (!dcom) return std::nullopt;
    const auto method = payloadBytes(window, *dcom, 0, 4);
    if (!method || bigEndian32(*method) != fourCharacters("zlib")) return std::nullopt;

    const auto cmvd = firstBox(window, cmov, fourCharacters("cmvd"));
    if (!cmvd) return std::nullopt;
    const auto stated = payloadBytes(window, *cmvd, 0, 4);
    if (!stated) return std::nullopt;
    const std::uint64_t size = bigEndian32(*stated);
    const std::uint64_t packedSize = cmvd->payloadSize() - 4;
    if (size > kMostExpandedHeader || size / kMostExpansion > packedSize) return std::nullopt;
    if (packedSize > kMostExpandedHeader) return std::nullopt;

    const auto packed = window.copy(cmvd->payload + 4, static_cast<std::size_t>(packedSize));
    if (!packed) return std::nullopt;
    return platform::inflater().expanded(*packed, static_cast<std::size_t>(size));
}

}  // namespace qrx
