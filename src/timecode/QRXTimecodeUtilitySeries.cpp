#include <cmath>

#include "foundation/NeutralAnswer.h"
#include "timecode/FrameDistribution.h"
#include "timecode/QRXTimecodeUtility.h"
#include "timecode/TimecodeFields.h"

namespace qrx {

namespace {

using Series = std::vector<std::string>;

// KEPT: seconds and minutes wrap above 60, not at 60, so both show 60 once a round.
constexpr std::int32_t kLastSecond = 60;
constexpr std::int32_t kLastMinute = 60;

/// Moves on by one frame. `limit` is the first number that the frames field does not take.
void advance(TimecodeFields& fields, std::int32_t limit) {
    ++fields.frames;
    if (fields.frames < limit) return;
    fields.frames = 0;
    ++fields.seconds;
    if (fields.seconds <= kLastSecond) return;
    fields.seconds = 0;
    ++fields.minutes;
    if (fields.minutes <= kLastMinute) return;
    fields.minutes = 0;
    ++fields.hours;
}

}  // namespace

std::vector<std::string> QRXTimecodeUtility::timecodeSeriesForFrames(std::int32_t count,
                                                                     std::uint32_t frameOffset,
                                                                     float frameRate,
                                                                     bool dropFrame) {
    return answerOr(Series{}, "timecodeSeriesForFrames", [&] {
        Series series;
        if (!(frameRate > 0.0F)) return series;
        const float perHour = 3600.0F * frameRate;
        const float perMinute = 60.0F * frameRate;
        for (std::int32_t i = 0; i < count; ++i) {
            const auto frame = static_cast<std::int32_t>(frameOffset + static_cast<unsigned>(i));
            const auto hours = distributedByFraction(frame, static_cast<double>(perHour));
            const auto minutes =
                distributedByFraction(hours.remainder, static_cast<double>(perMinute));
            const auto seconds =
                distributedByFraction(minutes.remainder, static_cast<double>(frameRate));
            series.push_back(timecodeText(
                {hours.quotient, minutes.quotient, seconds.quotient, seconds.remainder},
                dropFrame));
        }
        return series;
    });
}

std::vector<std::string> QRXTimecodeUtility::timecodeSeriesForStartTimecode(
    std::string_view startTimecode, std::int32_t frameCount, float frameRate, bool dropFrame) {
    return answerOr(Series{}, "timecodeSeriesForStartTimecode", [&] {
        Series series;
        if (!(frameRate > 0.0F)) return series;
        TimecodeFields fields;  // all 0, the default timecode
        if (hasTimecodeForm(startTimecode)) fields = fieldsOf(startTimecode).value();
        const std::int32_t limit = truncated(std::round(static_cast<double>(frameRate)));
        for (std::int32_t i = 0; i < frameCount; ++i) {
            series.push_back(timecodeText(fields, dropFrame));
            advance(fields, limit);
        }
        return series;
    });
}

}  // namespace qrx
