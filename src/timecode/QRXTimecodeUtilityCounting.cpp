#include "foundation/NeutralAnswer.h"
#include "foundation/Text.h"
#include "timecode/FrameDistribution.h"
#include "timecode/QRXTimecodeUtility.h"
#include "timecode/TimecodeFields.h"

namespace qrx {

namespace {

constexpr std::int32_t kSecondsPerHour = 3600;
constexpr std::int32_t kSecondsPerMinute = 60;
constexpr std::int32_t kMinutesPerHour = 60;

/// The fields of frame `frames`, counted without skipping, by whole numbers of frames.
TimecodeFields fieldsByWholeMeasures(std::int32_t frames, std::int64_t perHour,
                                     std::int64_t perMinute, std::int64_t perSecond) {
    const Distribution hours = distributed(frames, perHour);
    const Distribution minutes = distributed(hours.remainder, perMinute);
    const Distribution seconds = distributed(minutes.remainder, perSecond);
    return {hours.quotient, minutes.quotient, seconds.quotient, seconds.remainder};
}

/// As above at a fractional rate. The measures are cut to whole numbers of single-precision
/// products: 3600 x 29.97 is 107892 there and 107891.997 in double precision.
TimecodeFields fieldsAtRate(std::int32_t frames, float rate) {
    const float perHour = static_cast<float>(kSecondsPerHour) * rate;
    const float perMinute = static_cast<float>(kSecondsPerMinute) * rate;
    return fieldsByWholeMeasures(frames, truncated(static_cast<double>(perHour)),
                                 truncated(static_cast<double>(perMinute)),
                                 truncated(static_cast<double>(rate)));
}

/// `total` without the labels that drop-frame counting passes over.
// KEPT: two a minute but every tenth, for 59.94 too, which passes over four.
double withoutDroppedLabels(double total, const TimecodeFields& fields) {
    const std::int32_t totalMinutes = fields.hours * kMinutesPerHour + fields.minutes;
    const std::int32_t tenthMinutes = totalMinutes / 10;
    return total - 2.0 * totalMinutes + 2.0 * tenthMinutes;
}

/// frames + (seconds x rate + (hours x 3600 x rate + minutes x 60 x rate)), every product and sum
/// in the precision of `Real`.
template <class Real>
Real framesBeforeDropping(const TimecodeFields& fields, Real rate) {
    const Real ofHours = static_cast<Real>(fields.hours * kSecondsPerHour) * rate;
    const Real ofMinutes = static_cast<Real>(fields.minutes * kSecondsPerMinute) * rate;
    const Real ofSeconds = static_cast<Real>(fields.seconds) * rate;
    const Real upToMinutes = ofHours + ofMinutes;
    const Real upToSeconds = ofSeconds + upToMinutes;
    return static_cast<Real>(fields.frames) + upToSeconds;
}

void store(std::int32_t* where, std::int32_t value) {
    if (where != nullptr) *where = value;
}

}  // namespace

// ---- frames to timecode

std::string QRXTimecodeUtility::timecodeAtFrame(std::int32_t frame) const {
    const std::int32_t total = saturated(std::int64_t{frameOffset_} + frame);
    TimecodeFields fields = fieldsAtRate(total, framesPerSecond_);
    fields.frames = frame;  // KEPT: the argument, not what the seconds left
    return timecodeText(fields, isDropFrame_);
}

std::string QRXTimecodeUtility::timecodeFromFrames(std::int32_t frames, QRXVideoFrameRate rate,
                                                   QRXViewType viewType) {
    if (rate == QRXVideoFrameRateUndefined) return defaultTimecode();
    const bool dropFrame = videoFrameRateIsDropFrame(rate);
    if (frames <= 0) return dropFrame ? freshDropFrameTimecode() : freshNonDropFrameTimecode();
    // KEPT: no label is passed over; drop frame shows in the separator alone.
    return timecodeText(
        fieldsAtRate(frames, static_cast<float>(numericRateForVideoFrameRate(rate, viewType))),
        dropFrame);
}

std::optional<std::string> QRXTimecodeUtility::timecodeFromFramesWithFrameRate(std::uint32_t frames,
                                                                               double frameRate,
                                                                               bool dropFrame) {
    QRXVideoFrameRate rate = videoFrameRateFromNumericRate(frameRate, QRXScanTypeProgressive);
    if (rate == QRXVideoFrameRateUndefined) return std::nullopt;
    rate =
        dropFrame ? dropFrameRateForNonDropFrameRate(rate) : nonDropFrameRateForDropFrameRate(rate);
    const double numeric = numericRateForVideoFrameRate(rate, QRXViewTypeStandard);

    const auto count = static_cast<std::int32_t>(frames);
    const Distribution hours = distributedByFraction(count, kSecondsPerHour * numeric);
    const Distribution minutes =
        distributedByFraction(hours.remainder, kSecondsPerMinute * numeric);
    const Distribution seconds = distributedByFraction(minutes.remainder, numeric);
    return timecodeText({hours.quotient, minutes.quotient, seconds.quotient, seconds.remainder},
                        dropFrame);
}

std::string QRXTimecodeUtility::createTimecodeFromFrames(std::int32_t frames,
                                                         std::int32_t framesRate, bool dropFrame) {
    const std::int64_t rate = framesRate;
    TimecodeFields fields =
        fieldsByWholeMeasures(frames, rate * kSecondsPerHour, rate * kSecondsPerMinute, rate);
    // KEPT: only the label of a minute's first frame is moved, so 02 comes twice and 01 stays.
    if (dropFrame && fields.seconds == 0 && fields.frames == 0 && fields.minutes >= 1 &&
        fields.minutes % 10 != 0) {
        fields.frames = 2;
    }
    return timecodeText(fields, dropFrame);
}

std::string QRXTimecodeUtility::incrementTimecode(std::string_view timecode,
                                                  std::int32_t framesToStep,
                                                  std::int32_t frameRate) {
    return answerOr(std::string(timecode), "incrementTimecode", [&] {
        // KEPT: dropped labels are not counted on the way to frames, so stepping is not reversible.
        const std::int64_t frames =
            std::int64_t{totalFramesInTimeCode(timecode, frameRate)} + framesToStep;
        return createTimecodeFromFrames(saturated(frames), frameRate,
                                        timecodeIsDropFrame(timecode));
    });
}

std::string QRXTimecodeUtility::adjustTimecode(std::string_view timecode,
                                               std::int32_t fromRecordedRate,
                                               std::int32_t toTimecodeRate) {
    return answerOr(std::string(timecode), "adjustTimecode", [&] {
        const std::int32_t recorded = numericMovieRateFromRateDefinitions(fromRecordedRate);
        const std::int32_t target = numericMovieRateFromRateDefinitions(toTimecodeRate);
        if (!hasTimecodeForm(timecode) || recorded == target) return std::string(timecode);
        const std::size_t framesIndex = kFramesSeparatorIndex + 1;
        const std::int32_t frames = int32Value(timecode.substr(framesIndex));
        return std::string(timecode.substr(0, framesIndex)) +
               segmentText(frames * target / recorded);
    });
}

// ---- timecode to frames

std::int32_t QRXTimecodeUtility::framesRepresentedByTimecode(std::string_view timecode,
                                                             QRXVideoFrameRate rate) {
    return answerOr(std::int32_t{0}, "framesRepresentedByTimecode", [&] {
        const auto fields = hasTimecodeForm(timecode) ? fieldsOf(timecode) : std::nullopt;
        if (!fields) return std::int32_t{0};
        // KEPT: by the fractional rate, as if timecode ran with the clock.
        const auto numeric = static_cast<float>(numericRateForVideoFrameRate(rate));
        const auto total = static_cast<double>(framesBeforeDropping(*fields, numeric));
        return truncated(videoFrameRateIsDropFrame(rate) ? withoutDroppedLabels(total, *fields)
                                                         : total);
    });
}

std::int32_t QRXTimecodeUtility::totalFramesInTimeCode(std::string_view timecode,
                                                       std::int32_t frameRate) {
    return totalFramesInTimeCode(timecode, static_cast<double>(frameRate), false);
}

std::int32_t QRXTimecodeUtility::totalFramesInTimeCode(std::string_view timecode, double frameRate,
                                                       bool isDropFrame) {
    return answerOr(std::int32_t{0}, "totalFramesInTimeCode", [&] {
        const auto fields = fieldsOf(timecode);
        if (!fields) return std::int32_t{0};
        const double rate = doubleValue(fixedDecimals(frameRate, 2));
        const double total = framesBeforeDropping(*fields, rate);
        return truncated(isDropFrame ? withoutDroppedLabels(total, *fields) : total);
    });
}

// ---- divisions

std::int32_t QRXTimecodeUtility::remainingFramesAfterDistributionToTimeMeasurement(
    std::int32_t* time, std::int32_t framesToDistribute, std::int32_t framesPerMeasurement) {
    const Distribution result = distributed(framesToDistribute, framesPerMeasurement);
    store(time, result.quotient);
    return result.remainder;
}

std::int32_t QRXTimecodeUtility::findTimeRepresentedByFrames(std::int32_t frames,
                                                             std::int32_t framesPerMeasurment,
                                                             std::int32_t* time) {
    const Distribution result = distributed(frames, framesPerMeasurment);
    store(time, result.quotient);
    return result.remainder;
}

std::int32_t QRXTimecodeUtility::framesRemainingAfterDistribution(std::int32_t frames,
                                                                  std::int32_t* time,
                                                                  double framesPerMeasurment) {
    const Distribution result = distributedByFraction(frames, framesPerMeasurment);
    store(time, result.quotient);
    return result.remainder;
}

}  // namespace qrx
