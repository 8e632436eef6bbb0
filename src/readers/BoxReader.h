#pragma once

#include <cstdint>
#include <optional>

#include "readers/ByteWindow.h"

namespace qrx {

/// One box of a QuickTime or ISO base media file; positions count from the start of the source.
struct Box {
    std::uint32_t type = 0;     ///< four characters, see fourCharacters
    std::uint64_t start = 0;    ///< where its header begins
    std::uint64_t payload = 0;  ///< where its contents begin
    std::uint64_t end = 0;      ///< one past its last byte; never past the end of what holds it

    [[nodiscard]] std::uint64_t payloadSize() const { return end - payload; }
};

/// Walks the boxes that lie side by side between two positions. It only ever goes forward, by at
/// least the eight bytes of a header, so a chain of boxes cannot loop.
class BoxReader {
public:
    BoxReader(ByteWindow& window, std::uint64_t begin, std::uint64_t end)
        : window_(window), position_(begin), end_(end) {}
    /// Inside `container`.
    BoxReader(ByteWindow& window, const Box& container)
        : BoxReader(window, container.payload, container.end) {}

    /// The next box. Size 0 reaches to the end of what holds the box, size 1 means that a 64-bit
    /// size follows; a box that claims more than there is ends where what holds it ends. Nothing at
    /// the end, and nothing more once a size is smaller than the header itself.
    [[nodiscard]] std::optional<Box> next();

private:
    ByteWindow& window_;
    std::uint64_t position_;
    std::uint64_t end_;
};

/// The first box of `type` inside `container`.
[[nodiscard]] std::optional<Box> firstBox(ByteWindow& window, const Box& container,
                                          std::uint32_t type);

/// The `count` bytes that stand `offset` bytes into the contents of `box`, valid until the window
/// is asked again; nothing when the box ends before them.
[[nodiscard]] std::optional<std::span<const std::byte>> payloadBytes(ByteWindow& window,
                                                                     const Box& box,
                                                                     std::uint64_t offset,
                                                                     std::size_t count);

}  // namespace qrx
