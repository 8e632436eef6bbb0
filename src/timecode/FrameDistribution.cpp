#include "timecode/FrameDistribution.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "timecode/TimecodeFields.h"

namespace qrx {

Distribution distributed(std::int32_t frames, std::int64_t framesPerMeasure) {
    if (frames == 0 || framesPerMeasure == 0) return {};
    const std::int64_t count = frames;  // the quotient of the smallest number by -1 has 33 bits
    return {saturated(count / framesPerMeasure), saturated(count % framesPerMeasure)};
}

Distribution distributedByFraction(std::int32_t frames, double framesPerMeasure) {
    if (frames == 0 || framesPerMeasure == 0.0) return {};
    if (framesPerMeasure > frames) return {0, frames};
    if (!(framesPerMeasure > 0.0)) return {};  // no multiple ever gets above `frames`, or NaN

    // Counting up would take minutes for small measures. The quotient of doubles is off by one at
    // most where the product of the count differs from it in its last bit, so it is put right by
    // the products themselves, which is the test that counting makes.
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    double n = std::min(std::floor(frames / framesPerMeasure), kMost);
    while (n < kMost && (n + 1.0) * framesPerMeasure <= frames)
        n += 1.0;
    while (n > 0.0 && n * framesPerMeasure > frames)
        n -= 1.0;
    return {truncated(n), truncated(frames - n * framesPerMeasure)};
}

}  // namespace qrx
