#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "readers/ByteSource.h"

namespace qrx {

/// Most bytes of one search window.
inline constexpr std::uint64_t kMxfWindowBytes = 1'000'000;

/// The two places of an MXF file where values are sought: its first and its last million bytes.
/// Each is read when it is first asked for, and kept, so that several values can be sought in what
/// was read once.
class MxfWindows {
public:
    using Bytes = std::span<const std::byte>;

    /// `source` must outlive the windows.
    explicit MxfWindows(const ByteSource& source);

    /// The first bytes of the head, where nearly every value stands.
    [[nodiscard]] Bytes startOfHead();
    [[nodiscard]] Bytes head();
    /// Empty when the head holds the whole source.
    [[nodiscard]] Bytes tail();

private:
    /// Room for one window; not cleared first, which would cost as much as a search.
    struct Window {
        std::unique_ptr<std::byte[]> bytes;
        std::size_t count = 0;  ///< how many of them were read
    };

    /// Goes on reading `window` of the place `offset` until it holds `wanted` bytes.
    [[nodiscard]] Bytes filled(Window& window, std::uint64_t offset, std::size_t wanted);

    const ByteSource& source_;
    std::size_t size_;  ///< of either window
    Window head_;
    Window tail_;
};

}  // namespace qrx
