#pragma once

#include "platform/ports/Thumbnailer.h"

namespace qrx::platform {

/// Still pictures, by the image codec in force.
class DesktopThumbnailer final : public Thumbnailer {
public:
    [[nodiscard]] std::optional<Image> thumbnail(const std::string& path,
                                                 std::uint32_t maximumWidth,
                                                 std::uint32_t maximumHeight) override;
};

}  // namespace qrx::platform
