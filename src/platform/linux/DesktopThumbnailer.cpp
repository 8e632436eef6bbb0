#include "platform/linux/DesktopThumbnailer.h"

#include "platform/linux/PictureScaling.h"
#include "platform/ports/Services.h"

namespace qrx::platform {

std::optional<Image> DesktopThumbnailer::thumbnail(const std::string& path,
                                                   std::uint32_t maximumWidth,
                                                   std::uint32_t maximumHeight) {
    if (maximumWidth == 0 || maximumHeight == 0) return std::nullopt;
    const auto picture = imageCodec().load(path);
    if (!picture) return std::nullopt;
    return fittedInto(*picture, maximumWidth, maximumHeight);
}

}  // namespace qrx::platform
