#include "readers/MxfClipQuestions.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXConversionUtility.h"
#include "foundation/Text.h"
#include "readers/ByteSource.h"
#include "readers/MxfKeySearch.h"
#include "readers/MxfWindows.h"
#include "timecode/QRXTimecodeUtility.h"

namespace qrx {

namespace {

using Convert = QRXConversionUtility;
using Timecode = QRXTimecodeUtility;
using Wrapper = QRXMXFMetadataWrapper;

constexpr const char* kNoValue = "N/A";
constexpr std::size_t kDigitsOfARational = 16;
constexpr std::size_t kDigitsOfItsPart = 8;

/// One MXF file for the length of one question. What cannot be opened is as an empty one.
class MxfClip {
public:
    explicit MxfClip(const FilePath& file) : source_(file), windows_(source_) {}
    MxfClip(const MxfClip&) = delete;
    MxfClip& operator=(const MxfClip&) = delete;

    [[nodiscard]] std::optional<std::string> valueOf(const QRXMXFKey& key, MxfValueForm form) {
        return mxfValueInWindows(key, windows_, form);
    }
    [[nodiscard]] std::optional<std::string> hexValueOf(std::string_view identifier) {
        return valueOf(Wrapper::mxfKeyForMetadataAttributeKey(identifier), MxfValueForm::hexText);
    }
    [[nodiscard]] std::optional<std::string> decimalValueOf(std::string_view identifier) {
        return valueOf(Wrapper::mxfKeyForMetadataAttributeKey(identifier),
                       MxfValueForm::decimalText);
    }

private:
    FileByteSource source_;
    MxfWindows windows_;
};

QRXVideoFrameRate rateOfRoundedBase(std::string_view base) {
    return Timecode::videoFrameRateFromFrameRateDescription(base);
}

/// Eight digits of the index edit rate, which is stored as edit units per second: the first field
/// is the denominator of one unit's length, the second its numerator.
std::optional<std::int32_t> editRatePart(MxfClip& clip, std::size_t firstDigit) {
    const auto rational = clip.hexValueOf(QRXMXFMediaMetadataEditUnitsKey);
    if (!rational || rational->size() != kDigitsOfARational) return std::nullopt;
    const auto bits = Convert::hexToBinary(rational->substr(firstDigit, kDigitsOfItsPart));
    if (!bits) return std::nullopt;
    return static_cast<std::int32_t>(Convert::binaryToNumber(*bits).value_or(0));
}

std::int32_t editUnitNumerator(MxfClip& clip) {
    return editRatePart(clip, kDigitsOfItsPart).value_or(0);
}

std::int32_t editUnitDenominator(MxfClip& clip) {
    return editRatePart(clip, 0).value_or(1);
}

std::int32_t durationInEditUnits(MxfClip& clip) {
    return int32Value(clip.decimalValueOf(QRXMediaMetadataDurationKey).value_or(""));
}

bool isAmong(const Wrapper::MxfKeys& keys, const QRXMXFKey& key) {
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

std::string shownValue(const QRXMXFKey& key, MxfClip& clip) {
    const bool isHex = isAmong(Wrapper::keysWithHexValues(), key);
    const auto value = clip.valueOf(key, isHex ? MxfValueForm::hexText : MxfValueForm::decimalText);
    if (!value) return kNoValue;
    if (isAmong(Wrapper::booleanKeys(), key)) return *value == "1" ? "Yes" : "No";
    if (isAmong(Wrapper::keysWithAsciiHex(), key)) return Convert::textFromAsciiHexString(*value);
    return *value;
}

}  // namespace

bool mxfFileHasSignature(const FilePath& file) {
    return answerOr(false, "mxfFileHasSignature", [&] {
        const QRXMXFKey::Bytes signature =
            Wrapper::mxfKeyForMetadataAttributeKey(QRXMXFMediaMetadataHeaderKey).globalKey();
        const FileByteSource source(file);
        QRXMXFKey::Bytes start(signature.size());
        start.resize(source.read(0, start));
        return start == signature;
    });
}

std::optional<std::string> mxfUniqueIdentifier(const FilePath& file) {
    using Answer = std::optional<std::string>;
    return answerOr(Answer{}, "mxfUniqueIdentifier",
                    [&] { return MxfClip(file).hexValueOf(QRXMediaMetadataUMIDKey); });
}

std::int32_t mxfDurationInEditUnits(const FilePath& file) {
    return answerOr(std::int32_t{0}, "mxfDurationInEditUnits", [&] {
        MxfClip clip(file);
        return durationInEditUnits(clip);
    });
}

std::int32_t mxfEditUnitNumerator(const FilePath& file) {
    return answerOr(std::int32_t{0}, "mxfEditUnitNumerator", [&] {
        MxfClip clip(file);
        return editUnitNumerator(clip);
    });
}

std::int32_t mxfEditUnitDenominator(const FilePath& file) {
    return answerOr(std::int32_t{1}, "mxfEditUnitDenominator", [&] {
        MxfClip clip(file);
        return editUnitDenominator(clip);
    });
}

QRXVideoFrameRate mxfFrameRate(const FilePath& file) {
    return answerOr(QRXVideoFrameRateUndefined, "mxfFrameRate", [&] {
        return rateOfRoundedBase(
            MxfClip(file).decimalValueOf(QRXMXFMediaMetadataRoundedVideoFrameRateKey).value_or(""));
    });
}

std::string mxfStartTimecode(const FilePath& file) {
    return answerOr(Timecode::defaultTimecode(), "mxfStartTimecode", [&] {
        MxfClip clip(file);
        const auto start = clip.decimalValueOf(QRXMediaMetadataStartTimecodeKey);
        const auto dropFrame = clip.decimalValueOf(QRXMediaMetadataDropFrameKey);
        const auto base = clip.decimalValueOf(QRXMXFMediaMetadataRoundedVideoFrameRateKey);
        if (!start || !dropFrame || !base) return Timecode::defaultTimecode();
        // KEPT: the flag must be there, but what it says is not asked; 30 always means 29.97 drop
        // frame, and 24 means 23.976.
        const QRXVideoFrameRate rate =
            Timecode::dropFrameEquivalentForVideoFrameRate(rateOfRoundedBase(*base));
        return Timecode::timecodeFromFrames(int32Value(*start), rate, Timecode::defaultViewType());
    });
}

bool mxfIsDropFrame(const FilePath& file) {
    return answerOr(false, "mxfIsDropFrame", [&] {
        return boolValue(MxfClip(file).decimalValueOf(QRXMediaMetadataDropFrameKey).value_or(""));
    });
}

MetadataDictionary mxfMetadataDictionary(const FilePath& file, const std::string& startTimecode) {
    return answerOr(MetadataDictionary{}, "mxfMetadataDictionary", [&] {
        MetadataDictionary values{{std::string(QRXMediaMetadataStartTimecodeKey), startTimecode}};
        const auto store = [&](std::string_view name, std::string value) {
            values.insert_or_assign(std::string(name), std::move(value));
        };
        MxfClip clip(file);
        for (const QRXMXFKey& key : Wrapper::keysWithValues()) {
            store(key.keyDescription().value_or(""), shownValue(key, clip));
        }
        const std::int32_t numerator = editUnitNumerator(clip);
        const std::int32_t denominator = editUnitDenominator(clip);
        const std::int32_t editUnits = durationInEditUnits(clip);
        const double seconds = static_cast<double>(numerator) / denominator * editUnits;
        store(QRXMediaMetadataDurationKey, Convert::secondsToHoursMinutesSeconds(seconds));
        store(QRXMXFMediaMetadataTrackEditRateKey,
              std::to_string(denominator) + " / " + std::to_string(numerator));
        store(QRXMXFMediaMetadataEditUnitsKey, std::to_string(editUnits));
        store(QRXMediaMetadataVideoFileTitleKey, lastPathComponent(file));
        return values;
    });
}

QRXMXFMetadataWrapper mxfMetadataWrapper(const FilePath& file, const std::string& startTimecode) {
    return QRXMXFMetadataWrapper(mxfMetadataDictionary(file, startTimecode));
}

}  // namespace qrx
