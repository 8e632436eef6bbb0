#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/ports/Image.h"

namespace qrx::platform {

/// Makes small pictures of files, as the desktop shows them.
class Thumbnailer {
public:
    virtual ~Thumbnailer() = default;

    /// A picture of the file at `path` that fits inside `maximumWidth` x `maximumHeight` pixels and
    /// has the file's own proportions. A smaller one is not enlarged here, though whoever makes it
    /// may have done that. Nothing when nobody can make one, the file is missing or none (a FIFO,
    /// socket or device is never opened), or the time allowed for it is up. Throws RunCancelled as
    /// ProcessRunner::run does.
    [[nodiscard]] virtual std::optional<Image> thumbnail(const std::string& path,
                                                         std::uint32_t maximumWidth,
                                                         std::uint32_t maximumHeight) = 0;
};

}  // namespace qrx::platform
