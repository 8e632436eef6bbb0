#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace qrx::platform {

/// What becomes of a path whose last component is a symbolic link.
enum class LastLink { followed, refused };

/// The bytes of the regular file at `path`; nothing when there is none, it cannot be read, or it
/// holds more than `most` bytes. A FIFO or device is left alone, so that nothing can block.
[[nodiscard]] std::optional<std::string> smallFile(const std::string& path, std::size_t most,
                                                   LastLink lastLink);

/// The first `most` bytes of the regular file at `path`, or all of a shorter one; nothing when
/// there is none or it cannot be read.
[[nodiscard]] std::optional<std::string> firstBytes(const std::string& path, std::size_t most);

}  // namespace qrx::platform
