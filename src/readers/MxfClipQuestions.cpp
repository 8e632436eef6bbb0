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
#include "timecode/QRXTimecodeUtility.h"

namespace qrx {

namespace {

using Convert = QRXConversionUtility;
using Timecode = QRXTimecodeUtility;
using Wrapper = QRXMXFMetadataWrapper;

constexpr const char* kNoValue = "N/A";
constexpr std::size_t kDigitsOfARational = 16;
constexpr std::size_t kDigitsOfItsPart = 8;

std::optional<std::string> valueOf(std::string_view identifier, const FilePath& file,
                                   MxfValueForm form) {
    return mxfValueInFile(Wrapper::mxfKeyForMetadataAttributeKey(identifier), file, form);
}

std::optional<std::string> decimalValueOf(std::string_view identifier, const FilePath& file) {
    return valueOf(identifier, file, MxfValueForm::decimalText);
}

QRXVideoFrameRate rateOfRoundedBase(std::string_view base) {
    return Timecode::videoFrameRateFromFrameRateDescription(base);
}

/// Eight digits of the index edit rate, which is stored as edit units per second: the first field
/// is the denominator of one unit's length, the second its numerator.
std::optional<std::int32_t> editRatePart(const FilePath& file, std::size_t firstDigit) {
    const auto rational = valueOf(QRXMXFMediaMetadataEditUnitsKey, file, MxfValueForm::hexText);
    if (!rational || rational->size() != kDigitsOfARational) return std::nullopt;
    const auto bits = Convert::hexToBinary(rational->substr(firstDigit, kDigitsOfItsPart));
    if (!bits) return std::nullopt;
    return static_cast<std::int32_t>(Convert::binaryToNumber(*bits).value_or(0));
}

bool isAmong(const Wrapper::MxfKeys& keys, const QRXMXFKey& key) {
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

std::string shownValue(const QRXMXFKey& key, const FilePath& file) {
    const bool isHex = isAmong(Wrapper::keysWithHexValues(), key);
    const auto value =
        mxfValueInFile(key, file, isHex ? MxfValueForm::hexText : MxfValueForm::decimalText);
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
                    [&] { return valueOf(QRXMediaMetadataUMIDKey, file, MxfValueForm::hexText); });
}

std::int32_t mxfDurationInEditUnits(const FilePath& file) {
    return answerOr(std::int32_t{0}, "mxfDurationInEditUnits", [&] {
        return int32Value(decimalValueOf(QRXMediaMetadataDurationKey, file).value_or(""));
    });
}

std::int32_t mxfEditUnitNumerator(const FilePath& file) {
    return answerOr(std::int32_t{0}, "mxfEditUnitNumerator",
                    [&] { return editRatePart(file, kDigitsOfItsPart).value_or(0); });
}

std::int32_t mxfEditUnitDenominator(const FilePath& file) {
    return answerOr(std::int32_t{1}, "mxfEditUnitDenominator",
                    [&] { return editRatePart(file, 0).value_or(1); });
}

QRXVideoFrameRate mxfFrameRate(const FilePath& file) {
    return answerOr(QRXVideoFrameRateUndefined, "mxfFrameRate", [&] {
        return rateOfRoundedBase(
            decimalValueOf(QRXMXFMediaMetadataRoundedVideoFrameRateKey, file).value_or(""));
    });
}

std::string mxfStartTimecode(const FilePath& file) {
    return answerOr(Timecode::defaultTimecode(), "mxfStartTimecode", [&] {
        const auto start = decimalValueOf(QRXMediaMetadataStartTimecodeKey, file);
        const auto dropFrame = decimalValueOf(QRXMediaMetadataDropFrameKey, file);
        const auto base = decimalValueOf(QRXMXFMediaMetadataRoundedVideoFrameRateKey, file);
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
        return boolValue(decimalValueOf(QRXMediaMetadataDropFrameKey, file).value_or(""));
    });
}

MetadataDictionary mxfMetadataDictionary(const FilePath& file, const std::string& startTimecode) {
    return answerOr(MetadataDictionary{}, "mxfMetadataDictionary", [&] {
        MetadataDictionary values{{std::string(QRXMediaMetadataStartTimecodeKey), startTimecode}};
        const auto store = [&](std::string_view name, std::string value) {
            values.insert_or_assign(std::string(name), std::move(value));
        };
        for (const QRXMXFKey& key : Wrapper::keysWithValues()) {
            store(key.keyDescription().value_or(""), shownValue(key, file));
        }
        const std::int32_t numerator = mxfEditUnitNumerator(file);
        const std::int32_t denominator = mxfEditUnitDenominator(file);
        const std::int32_t editUnits = mxfDurationInEditUnits(file);
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
