#pragma once

#include <string>
#include <string_view>

namespace qrx::platform {

/// Bytes of a file's begin that are enough to tell its type.
inline constexpr std::size_t kContentTypeBytes = std::size_t{16} << 10U;

/// The MIME type of a file by its name and first bytes, as the shared MIME database tells it;
/// "application/octet-stream" when nothing is known.
[[nodiscard]] std::string contentType(const std::string& path, std::string_view firstBytes);

/// Whether `type` is `base`, an alias of it, or a kind of it.
[[nodiscard]] bool contentTypeIsA(const std::string& type, const std::string& base);

/// Whether this process itself can read pictures of that type, and such as have a size of their
/// own: drawings that scale are left to programs whose time is limited.
[[nodiscard]] bool isStillPicture(const std::string& type);

}  // namespace qrx::platform
