#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace qrx::platform {

// libplist trusts its input: it recurses as deep as the list is nested, copies a shared object once
// for each mention, and follows a container into itself. So every list is checked from end to end
// before libplist sees it, and only the types of PropertyValue pass.

inline constexpr std::size_t kMostPropertyListBytes = std::size_t{16} << 20U;
/// Containers within one another, the outermost counted.
inline constexpr std::size_t kMostPropertyListDepth = 64;
/// Values and dictionary keys; a shared one counts once for each mention.
inline constexpr std::size_t kMostPropertyListObjects = 100'000;

/// Whether `bytes` are one whole binary list within the limits, no container mentioned twice. What
/// sharing would unfold texts and data to is held to the limit of bytes as well.
[[nodiscard]] bool isBoundedBinaryPropertyList(std::span<const std::byte> bytes);

/// Whether `markup` is one whole XML list within the limits: UTF-8, no document type of its own,
/// texts without markup in them. A byte-order mark is no part of `markup`.
[[nodiscard]] bool isBoundedXmlPropertyList(std::string_view markup);

}  // namespace qrx::platform
