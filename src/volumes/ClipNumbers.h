#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qrx {

// Names of clips that consist of parts between "_": MVI_0042.MOV, ABCD0001_02.MOV.

/// The name of the file at `path` without its extension.
[[nodiscard]] std::string clipName(std::string_view path);

/// The part of `name` at `index`, from 0; nothing when there are fewer. A name without "_" is one
/// part.
[[nodiscard]] std::optional<std::string> underscorePart(std::string_view name, std::size_t index);

/// The leading integer of that part.
[[nodiscard]] std::optional<std::int32_t> underscoreNumber(std::string_view name,
                                                           std::size_t index);

}  // namespace qrx
