#pragma once

#include <cstdint>
#include <optional>

#include "readers/ByteWindow.h"

namespace qrx {

/// One chunk of a RIFF (AVI, WAV) or IFF (AIFF) file; positions count from the start of the source.
struct Chunk {
    std::uint32_t type = 0;        ///< four characters, see fourCharacters
    std::uint64_t payload = 0;     ///< where its contents begin
    std::uint64_t end = 0;         ///< one past its last byte; never past the end of what holds it
    std::uint32_t statedSize = 0;  ///< as its header has it

    [[nodiscard]] std::uint64_t payloadSize() const { return end - payload; }
};

enum class ByteOrder { little, big };

/// Walks the chunks that lie side by side between two positions: type, 32-bit size, contents, one
/// byte more where the size is odd. Goes forward by at least the eight bytes of a header.
class ChunkReader {
public:
    ChunkReader(ByteWindow& window, ByteOrder order, std::uint64_t begin, std::uint64_t end)
        : window_(window), order_(order), position_(begin), end_(end) {}

    /// The next chunk; one that claims more than there is ends where what holds it ends. Nothing at
    /// the end.
    [[nodiscard]] std::optional<Chunk> next();

    /// Goes on `size` bytes after the start of the contents of `chunk`, for a size that stands
    /// elsewhere than in its header.
    void skipContents(const Chunk& chunk, std::uint64_t size);

private:
    ByteWindow& window_;
    ByteOrder order_;
    std::uint64_t position_;
    std::uint64_t end_;
};

/// The `count` bytes that stand `offset` bytes into the contents of `chunk`, valid until the window
/// is asked again; nothing when the chunk ends before them.
[[nodiscard]] std::optional<std::span<const std::byte>> contentBytes(ByteWindow& window,
                                                                     const Chunk& chunk,
                                                                     std::uint64_t offset,
                                                                     std::size_t count);

/// The contents of `chunk` up to its first zero byte, as a name; nothing when they are empty, not
/// UTF-8, or longer than 4,096 bytes.
[[nodiscard]] std::optional<std::string> nameInChunk(ByteWindow& window, const Chunk& chunk);

}  // namespace qrx
