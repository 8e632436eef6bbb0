#pragma once

#include "platform/ports/Image.h"

namespace qrx::platform {

/// Every format that gdk-pixbuf has a loader for.
class PixbufImageCodec final : public ImageCodec {
public:
    /// The size is looked at as soon as the file tells it, before anything is allocated for it.
    [[nodiscard]] std::optional<Image> load(const std::string& path) const override;
};

}  // namespace qrx::platform
