#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace qrx::platform {

/// Expands zlib streams (RFC 1950), the packing of compressed movie headers.
class Inflater {
public:
    virtual ~Inflater() = default;

    /// @param packed  one whole zlib stream; what follows it is ignored.
    /// @param limit   most bytes that may come out.
    /// @return the expanded bytes; nothing when the stream is damaged, cut short or larger than
    ///         `limit`.
    [[nodiscard]] virtual std::optional<std::vector<std::byte>> expanded(
        std::span<const std::byte> packed, std::size_t limit) const = 0;
};

}  // namespace qrx::platform
