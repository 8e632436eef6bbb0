#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/QRXObject.h"
#include "timecode/VideoFrameRate.h"

namespace qrx {

/// Frame rates and timecode.
///
/// A timecode is the text HH:MM:SS:FF of exactly 11 characters; the separator before the frames is
/// ";" in drop-frame notation. No field has a range limit. Produced timecodes have none either: a
/// field of 100 or more is written with all its digits and a negative one as "0" and the number
/// ("0-3"), so such a text can be longer and is then no valid timecode.
///
/// An instance stands for a running timecode: a rate and the timecode of its frame 0. Everything
/// else is static and depends on its arguments alone. An absent text counts as the empty one. No
/// operation throws; numbers out of every range saturate.
class QRXTimecodeUtility : public QRXMediaObject {
public:
    /// 30 frames/s from "00:00:00:00".
    QRXTimecodeUtility();
    /// `frameRate` in frames per second; a timecode that is not valid starts at frame 0.
    QRXTimecodeUtility(float frameRate, std::string_view startTimecode);
    /// A new default instance.
    [[nodiscard]] static QRXTimecodeUtility timecodeUtility();

    // ---- the running timecode

    [[nodiscard]] float framesPerSecond() const { return framesPerSecond_; }
    /// Number of the frame that `startTimecode` names.
    [[nodiscard]] std::int32_t frameOffset() const { return frameOffset_; }
    [[nodiscard]] bool isDropFrame() const { return isDropFrame_; }
    [[nodiscard]] const std::string& startTimecode() const { return startTimecode_; }
    /// Each setter changes its own value alone; the others are not derived anew.
    void setFramesPerSecond(float framesPerSecond) { framesPerSecond_ = framesPerSecond; }
    void setFrameOffset(std::int32_t frameOffset) { frameOffset_ = frameOffset; }
    void setIsDropFrame(bool isDropFrame) { isDropFrame_ = isDropFrame; }
    void setStartTimecode(std::string_view startTimecode) { startTimecode_ = startTimecode; }

    /// Timecode of the frame that comes `frame` frames after the start. The frames field is `frame`
    /// itself, whatever its size.
    [[nodiscard]] std::string timecodeAtFrame(std::int32_t frame) const;

    // ---- frame rates: defaults and lists

    [[nodiscard]] static QRXScanType defaultScanType() { return QRXScanTypeProgressive; }
    [[nodiscard]] static QRXViewType defaultViewType() { return QRXViewTypeStandard; }
    [[nodiscard]] static QRXVideoFrameRate defaultVideoFrameRate() { return QRXVideoFrameRate30; }
    [[nodiscard]] static QRXFrameRateDefinition defaultFramerateDefinition() {
        return QRXFrameRateDefinition30;
    }

    /// Ascending; the undefined rate is in none of these lists.
    [[nodiscard]] static std::vector<QRXVideoFrameRate> allDefinedVideoFrameRates();
    [[nodiscard]] static std::vector<QRXVideoFrameRate> interlacedVideoFrameRates();
    [[nodiscard]] static std::vector<QRXVideoFrameRate> progressiveVideoFrameRates();
    [[nodiscard]] static std::vector<QRXVideoFrameRate> palVideoFrameRates();
    [[nodiscard]] static std::vector<QRXVideoFrameRate> ntscFrameRates();
    [[nodiscard]] static std::vector<QRXVideoFrameRate> dropFrameVideoFrameRates();
    [[nodiscard]] static std::vector<QRXVideoFrameRate> nonDropFrameVideoFrameRates();
    /// In search order: 106 stands before 104, and 107 is not in it.
    [[nodiscard]] static std::vector<QRXFrameRateDefinition> allDefinedOldFrameRates();
    /// 101, 100, 110, 102, 103, 104, 105.
    [[nodiscard]] static std::vector<QRXFrameRateDefinition> allDefinedMovieRates();

    // ---- frame rates: questions; numbers above 10 answer as the undefined rate does

    [[nodiscard]] static bool videoFrameRateIsNTSC(QRXVideoFrameRate rate);
    [[nodiscard]] static bool videoFrameRateIsProgressive(QRXVideoFrameRate rate);
    [[nodiscard]] static bool videoFrameRateIsInterlaced(QRXVideoFrameRate rate);
    [[nodiscard]] static bool videoFrameRateIsDropFrame(QRXVideoFrameRate rate);
    [[nodiscard]] static bool frameRateIsDrop(QRXVideoFrameRate rate);

    // ---- frame rates: equivalents

    /// 59.94i gives 60, 29.97 gives 30, 23.976 gives 24; any other rate is unchanged.
    [[nodiscard]] static QRXVideoFrameRate nonDropFrameEquivalentForVideoFrameRate(
        QRXVideoFrameRate rate);
    [[nodiscard]] static QRXVideoFrameRate nonDropFrameRateForDropFrameRate(QRXVideoFrameRate rate);
    /// The reverse of the non-drop equivalent.
    [[nodiscard]] static QRXVideoFrameRate dropFrameEquivalentForVideoFrameRate(
        QRXVideoFrameRate rate);
    [[nodiscard]] static QRXVideoFrameRate dropFrameRateForNonDropFrameRate(QRXVideoFrameRate rate);
    /// 50i gives 25, 59.94i gives 29.97; any other rate is unchanged.
    [[nodiscard]] static QRXVideoFrameRate progressiveEquivalentForVideoFrameRate(
        QRXVideoFrameRate rate);
    /// 25 gives 50i, 29.97 gives 59.94i, an interlaced rate itself; any other is undefined.
    [[nodiscard]] static QRXVideoFrameRate interlacedEquivalentForVideoFrameRate(
        QRXVideoFrameRate rate);
    /// PAL for 24, 23.976 and PAL; undefined for every other rate, 25 and 50i included.
    [[nodiscard]] static QRXVideoFrameRate palEquivalentForVideoFrameRate(QRXVideoFrameRate rate);
    /// In the frame view the progressive equivalent of an interlaced rate; else `rate`.
    [[nodiscard]] static QRXVideoFrameRate videoFrameRateEquivalentForFrameRate(
        QRXVideoFrameRate rate, QRXViewType basedOnViewType);

    // ---- frame rates: numbers and texts

    /// Rate that a number of frames per second means, undefined for any but the usual ones; rounded
    /// to two decimals first. 59.94 gives the interlaced rate for every scan type.
    [[nodiscard]] static QRXVideoFrameRate videoFrameRateFromNumericRate(double numericRate);
    [[nodiscard]] static QRXVideoFrameRate videoFrameRateFromNumericRate(double numericRate,
                                                                         QRXScanType scanType);
    [[nodiscard]] static QRXVideoFrameRate frameRateForDouble(double numericRate);
    /// Frames (of interlaced rates fields) per second, 0 when undefined. 50i and 50p give 59.94.
    [[nodiscard]] static double numericRateForVideoFrameRate(QRXVideoFrameRate rate);
    /// As above; in the frame view 29.97 for 59.94i and 25 for 50i.
    [[nodiscard]] static double numericRateForVideoFrameRate(QRXVideoFrameRate rate,
                                                             QRXViewType viewType);
    /// The numeric rate in its shortest decimal form: "23.976", "24", "0".
    [[nodiscard]] static std::string stringRateForVideoFrameRate(QRXVideoFrameRate rate);
    /// Rate by the first two characters of a description, blanks around it ignored: "2997",
    /// "29.97 DF" and "29" are one rate. Undefined for anything else.
    [[nodiscard]] static QRXVideoFrameRate videoFrameRateFromFrameRateDescription(
        std::string_view description);
    /// As above, then moved to the interlaced or progressive equivalent where the scan type asks.
    [[nodiscard]] static QRXVideoFrameRate videoFrameRateFromFrameRateDescription(
        std::string_view description, QRXScanType scanType);
    /// A placeholder of the interface: always 0. Do not rely on it.
    [[nodiscard]] static double adjustedFrameRate(double frameRate, bool forDropFrame);

    // ---- the older definitions; any number can be asked about

    [[nodiscard]] static QRXVideoFrameRate convertOldFrameRateDefinition(std::int32_t definition);
    /// First of `allDefinedOldFrameRates` that means `rate`; 107 when none does.
    [[nodiscard]] static QRXFrameRateDefinition convertVideoFrameRateDefinitionToOld(
        QRXVideoFrameRate rate);
    /// Definition by what occurs in `text`; 107 for an absent one and for all others, "60" too.
    [[nodiscard]] static QRXFrameRateDefinition movieRateFromString(
        std::optional<std::string_view> text, bool withDropFrame);
    /// Definition by the first two characters of the number; never drop frame. 30 and 60 give 107.
    [[nodiscard]] static QRXFrameRateDefinition movieRateFromNumber(double number);
    /// "2997", "25", "24", "5994", "50"; "30" for all others.
    [[nodiscard]] static std::string movieRateFromRateDefinition(std::int32_t definition);
    /// Whole frames per second; 30 for all that have none.
    [[nodiscard]] static std::int32_t numericMovieRateFromRateDefinitions(std::int32_t definition);

    // ---- timecode texts

    [[nodiscard]] static std::string defaultTimecode() { return freshNonDropFrameTimecode(); }
    [[nodiscard]] static std::string freshNonDropFrameTimecode() { return "00:00:00:00"; }
    [[nodiscard]] static std::string freshDropFrameTimecode() { return "00:00:00;00"; }

    /// By form alone: "99:99:99:99" is valid.
    [[nodiscard]] static bool timecodeIsValid(std::string_view timecode);
    [[nodiscard]] static bool isValidTimeCode(std::string_view timecode);
    /// Whether it is valid and in drop-frame notation.
    [[nodiscard]] static bool timecodeHasDropFrameIndicator(std::string_view timecode);
    /// Whether character 8 is ";"; the rest may be anything.
    [[nodiscard]] static bool timecodeIsDropFrame(std::string_view timecode);
    /// The timecode in the notation asked for; a text that is no timecode comes back as it is.
    [[nodiscard]] static std::string forceTimecodeToMatchDropFrameFormat(std::string_view timecode,
                                                                         bool dropFrame);
    [[nodiscard]] static std::string augmentTimecodeDropFrame(std::string_view timecode,
                                                              bool dropFrameStatus);
    /// The fields in reverse order, for cameras that store the frames first: "04030201" gives
    /// "01:02:03:04". Nothing when there are not exactly 8 characters besides ":" and ";".
    [[nodiscard]] static std::optional<std::string> reverseTimecodeString(
        std::string_view timecode);
    /// Time of day in the local zone, frames 00; "00:00:00:00" when absent.
    [[nodiscard]] static std::string dateToTimecode(std::optional<std::int64_t> secondsSince1970);
    [[nodiscard]] static std::string timecodeFromDate(std::optional<std::int64_t> secondsSince1970);
    [[nodiscard]] static std::string timecodeFromHours(std::int32_t hours, std::int32_t minutes,
                                                       std::int32_t seconds, std::int32_t frames,
                                                       bool dropFrame);
    /// 7 gives "07", 123 "123", -3 "0-3".
    [[nodiscard]] static std::string timecodeSegmentFromInteger(std::int32_t number);
    [[nodiscard]] static std::string formatTimeCodeSegmentFromInteger(std::int32_t number);

    // ---- frames to timecode

    /// Timecode of frame `frames`, counted without skipping; a drop-frame rate changes only the
    /// separator. "00:00:00:00" for the undefined rate.
    [[nodiscard]] static std::string timecodeFromFrames(std::int32_t frames, QRXVideoFrameRate rate,
                                                        QRXViewType viewType);
    /// The same with fractional divisors; nothing for a rate that is none of the usual ones. The
    /// rate is first moved to its drop or non-drop form: 29.97 without drop frame counts as 30.
    /// A count above 2147483647 is taken as the signed number with the same bits.
    [[nodiscard]] static std::optional<std::string> timecodeFromFramesWithFrameRate(
        std::uint32_t frames, double frameRate, bool dropFrame);
    /// The same by a whole rate. With drop frame, the first frame of a minute that is not a
    /// multiple of ten is labelled 02; no other label changes.
    [[nodiscard]] static std::string createTimecodeFromFrames(std::int32_t frames,
                                                              std::int32_t framesRate,
                                                              bool dropFrame);
    [[nodiscard]] static std::string incrementTimecode(std::string_view timecode,
                                                       std::int32_t framesToStep,
                                                       std::int32_t frameRate);
    /// The frames field rescaled between two `QRXFrameRateDefinition`s, the rest unchanged.
    [[nodiscard]] static std::string adjustTimecode(std::string_view timecode,
                                                    std::int32_t fromRecordedRate,
                                                    std::int32_t toTimecodeRate);

    // ---- timecode to frames

    /// 0 when the timecode is not valid.
    [[nodiscard]] static std::int32_t framesRepresentedByTimecode(std::string_view timecode,
                                                                  QRXVideoFrameRate rate);
    /// Fields by position, whatever stands around them; 0 when the text is too short.
    [[nodiscard]] static std::int32_t totalFramesInTimeCode(std::string_view timecode,
                                                            std::int32_t frameRate);
    [[nodiscard]] static std::int32_t totalFramesInTimeCode(std::string_view timecode,
                                                            double frameRate, bool isDropFrame);

    // ---- divisions; the quotient goes to *time, the remainder is the answer, both truncated

    /// 0 and 0 when either number is 0.
    [[nodiscard]] static std::int32_t remainingFramesAfterDistributionToTimeMeasurement(
        std::int32_t* time, std::int32_t framesToDistribute, std::int32_t framesPerMeasurement);
    [[nodiscard]] static std::int32_t findTimeRepresentedByFrames(std::int32_t frames,
                                                                  std::int32_t framesPerMeasurment,
                                                                  std::int32_t* time);
    /// By a fractional measure: the smallest whole n, 0 or above, with (n + 1) measures above
    /// `frames`. 0 and 0 for a measure of 0 and where no n is large enough.
    [[nodiscard]] static std::int32_t framesRemainingAfterDistribution(std::int32_t frames,
                                                                       std::int32_t* time,
                                                                       double framesPerMeasurment);

    // ---- series

    /// Timecodes of `count` frames from frame `frameOffset` on; empty for a rate that is not above
    /// 0.
    [[nodiscard]] static std::vector<std::string> timecodeSeriesForFrames(std::int32_t count,
                                                                          std::uint32_t frameOffset,
                                                                          float frameRate,
                                                                          bool dropFrame);
    /// `frameCount` timecodes from `startTimecode` on ("00:00:00:00" when that is not valid).
    /// Seconds and minutes count up to 60 before they wrap; hours never wrap. Empty for a rate that
    /// is not above 0.
    [[nodiscard]] static std::vector<std::string> timecodeSeriesForStartTimecode(
        std::string_view startTimecode, std::int32_t frameCount, float frameRate, bool dropFrame);

private:
    float framesPerSecond_;
    std::int32_t frameOffset_;
    bool isDropFrame_;
    std::string startTimecode_;
};

}  // namespace qrx
