#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

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

// JVC's cards name a clip ABCD0001_02: the clip's number behind the camera's letters, then the
// piece of a recording that was split.

/// Both numbers: that of the last four characters before the first "_", and that behind it. Nothing
/// when there are fewer than four, or no "_".
[[nodiscard]] std::optional<std::pair<std::int32_t, std::int32_t>> clipAndPiece(
    std::string_view path);

/// The name of the file at `path` up to its first "_", which the pieces of one recording share; the
/// whole name, extension included, without one.
[[nodiscard]] std::string pieceSeries(std::string_view path);

}  // namespace qrx
