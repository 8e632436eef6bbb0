#include "readers/ChunkReader.h"

#include <algorithm>

#include "foundation/Text.h"

namespace qrx {

namespace {
constexpr std::uint64_t kHeader = 8;
constexpr std::size_t kLongestName = 4096;
}  // namespace

std::optional<Chunk> ChunkReader::next() {
    const std::uint64_t left = end_ - std::min(position_, end_);
    if (left < kHeader || !window_.takeStep()) return std::nullopt;
    const auto header = window_.at(position_, kHeader);
    if (!header) return std::nullopt;

    Chunk chunk;
    chunk.type = bigEndian32(*header);
    chunk.statedSize = order_ == ByteOrder::big ? bigEndian32(header->subspan(4))
                                                : littleEndian32(header->subspan(4));
    chunk.payload = position_ + kHeader;
    chunk.end = chunk.payload + std::min<std::uint64_t>(chunk.statedSize, left - kHeader);
    skipContents(chunk, chunk.statedSize);
    return chunk;
}

void ChunkReader::skipContents(const Chunk& chunk, std::uint64_t size) {
    const std::uint64_t left = end_ - chunk.payload;
    position_ = size >= left ? end_ : chunk.payload + size + size % 2;
}

std::optional<std::span<const std::byte>> contentBytes(ByteWindow& window, const Chunk& chunk,
                                                       std::uint64_t offset, std::size_t count) {
    if (offset > chunk.payloadSize() || count > chunk.payloadSize() - offset) return std::nullopt;
    return window.at(chunk.payload + offset, count);
}

std::optional<std::string> nameInChunk(ByteWindow& window, const Chunk& chunk) {
    if (chunk.payloadSize() > kLongestName) return std::nullopt;
    const auto bytes =
        contentBytes(window, chunk, 0, static_cast<std::size_t>(chunk.payloadSize()));
    if (!bytes) return std::nullopt;
    std::string name = textOf(*bytes);
    name.erase(std::find(name.begin(), name.end(), '\0'), name.end());
    if (name.empty() || !isUtf8(name)) return std::nullopt;
    return name;
}

}  // namespace qrx
