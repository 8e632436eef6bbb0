#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx::tool {

/// Pieces that are not there, from one number to another; both are missing.
struct NumberGap {
    std::int32_t first = 0;
    std::int32_t last = 0;
    std::string firstName;  ///< of the clips, without extension: "632_0001_02"
    std::string lastName;

    bool operator==(const NumberGap&) const = default;
};

/// The gaps in the numbers of the pieces, which count from 1; a piece after the last is missed by
/// nobody. Nothing when a name has no number.
///
/// @param part  which part of the name, between "_", is the number; from 0.
[[nodiscard]] std::optional<std::vector<NumberGap>> numberGaps(const FilePaths& pieces,
                                                               std::size_t part);

}  // namespace qrx::tool
