#include "qrx/report/Durations.h"

#include <array>
#include <cmath>

#include "foundation/Text.h"
#include "timecode/QRXTimecodeUtility.h"

namespace qrx::tool {

namespace {

std::optional<double> positive(double value) {
    if (!std::isfinite(value) || value <= 0) return std::nullopt;
    return value;
}

/// The rates of NTSC are written rounded.
double exactRate(double rounded) {
    for (const double whole : {24.0, 30.0, 60.0}) {
        constexpr double kNtsc = 1000.0 / 1001.0;
        constexpr double kRounding = 0.01;
        if (std::abs(rounded - whole * kNtsc) < kRounding) return whole * kNtsc;
    }
    return rounded;
}

std::int64_t field(std::string_view timecode, std::size_t at) {
    return int32Value(timecode.substr(at, 2));
}

/// Number of the frame that carries the label, as the standard counts drop frame: the first labels
/// of every minute that is no multiple of ten are left out.
std::int64_t frameNumber(std::string_view timecode, std::int64_t base, bool isDropFrame) {
    constexpr std::int64_t kMinutesPerHour = 60;
    constexpr std::int64_t kSecondsPerMinute = 60;
    constexpr std::int64_t kLabelsLeftOutPer30 = 2;
    const std::int64_t minutes = field(timecode, 0) * kMinutesPerHour + field(timecode, 3);
    const std::int64_t frames =
        (minutes * kSecondsPerMinute + field(timecode, 6)) * base + field(timecode, 9);
    return isDropFrame ? frames - kLabelsLeftOutPer30 * (base / 30) * (minutes - minutes / 10)
                       : frames;
}

}  // namespace

std::optional<double> framesPerSecond(std::string_view rateName) {
    const auto rate = positive(doubleValue(rateName));
    if (!rate) return std::nullopt;
    const bool countsFields = rateName.find('i') != std::string_view::npos;
    constexpr double kLeastFieldRate = 48;  // "25i" is said of frames, "50i" of fields
    return exactRate(*rate) / (countsFields && *rate > kLeastFieldRate ? 2 : 1);
}

std::optional<double> secondsOfEditUnits(std::string_view units, std::string_view secondsPerUnit) {
    const auto slash = secondsPerUnit.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    const double numerator = doubleValue(secondsPerUnit.substr(0, slash));
    const double denominator = doubleValue(secondsPerUnit.substr(slash + 1));
    if (numerator <= 0 || denominator <= 0) return std::nullopt;
    return positive(static_cast<double>(int64Value(units)) * numerator / denominator);
}

std::optional<double> secondsOfClock(std::string_view text) {
    const auto parts = split(trimBlanksAndLineEnds(text), ":");
    if (parts.size() != 3) return std::nullopt;
    double seconds = 0;
    for (const std::string& part : parts) {
        constexpr double kNextUnit = 60;
        const double value = doubleValue(part);
        if (value < 0) return std::nullopt;
        seconds = seconds * kNextUnit + value;
    }
    return positive(seconds);
}

std::optional<double> secondsBetween(std::string_view firstTimecode, std::string_view lastTimecode,
                                     double framesPerSecond, bool isDropFrame) {
    using Timecode = QRXTimecodeUtility;
    if (!Timecode::isValidTimeCode(firstTimecode) || !Timecode::isValidTimeCode(lastTimecode) ||
        framesPerSecond <= 0) {
        return std::nullopt;
    }
    const auto base = static_cast<std::int64_t>(std::lround(framesPerSecond));
    const std::int64_t frames = frameNumber(lastTimecode, base, isDropFrame) -
                                frameNumber(firstTimecode, base, isDropFrame) + 1;
    return positive(static_cast<double>(frames) / framesPerSecond);
}

}  // namespace qrx::tool
