#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace qrx {

/// Position of the first occurrence of `pattern` in `data`; nothing when there is none and when
/// `pattern` is empty.
///
/// Four bytes of the pattern are compared at once at 64 places of the data, so the speed depends
/// hardly at all on what the data are: gigabytes a second on noise, on zeros and on data full of
/// the pattern's first byte.
[[nodiscard]] std::optional<std::size_t> firstOccurrence(std::span<const std::byte> data,
                                                         std::span<const std::byte> pattern);

}  // namespace qrx
