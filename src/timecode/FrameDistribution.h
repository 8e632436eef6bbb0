#pragma once

#include <cstdint>

namespace qrx {

/// How often a measure of time goes into a number of frames, and what is left.
struct Distribution {
    std::int32_t quotient = 0;
    std::int32_t remainder = 0;
};

/// Truncating division; zeros when either number is 0.
[[nodiscard]] Distribution distributed(std::int32_t frames, std::int64_t framesPerMeasure);

/// The smallest n, 0 or above, for which (n + 1) * framesPerMeasure is above `frames`, and what n
/// measures leave, truncated. Zeros when `frames` or the measure is 0 and when there is no such n.
[[nodiscard]] Distribution distributedByFraction(std::int32_t frames, double framesPerMeasure);

}  // namespace qrx
