#pragma once

#include "platform/ports/Inflater.h"

namespace qrx::platform {

/// zlib itself.
class ZlibInflater final : public Inflater {
public:
    [[nodiscard]] std::optional<std::vector<std::byte>> expanded(std::span<const std::byte> packed,
                                                                 std::size_t limit) const override;
};

}  // namespace qrx::platform
