#include "readers/MxfKeySearch.h"

#include <algorithm>
#include <array>

#include "foundation/ByteCursor.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/QRXConversionUtility.h"
#include "readers/ByteSearch.h"

namespace qrx {

namespace {

using Bytes = std::span<const std::byte>;
using Value = std::optional<std::string>;

constexpr std::size_t kFollowingBytes = 1024;
constexpr std::size_t kLabelWithin = 128;
constexpr std::array kSmpteLabelPrefix{std::byte{0x06}, std::byte{0x0E}, std::byte{0x2B},
                                       std::byte{0x34}};

/// Local tag and length field as they stand in the file.
QRXMXFKey::Bytes searchPattern(const QRXMXFKey& key) {
    QRXMXFKey::Bytes pattern = key.localKey();
    pattern.insert(pattern.end(), key.hexLocalKeyLength().begin(), key.hexLocalKeyLength().end());
    return pattern;
}

/// A negative length (a field of four bytes or more) becomes one that no data hold.
std::uint64_t valueLength(const QRXMXFKey& key) {
    const std::uint64_t field = QRXConversionUtility::dataToNumber(key.hexLocalKeyLength());
    return static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(field)});
}

std::string textOfValue(Bytes value, MxfValueForm form) {
    return form == MxfValueForm::decimalText
               ? std::to_string(QRXConversionUtility::dataToNumber(value))
               : QRXConversionUtility::dataToString(value);
}

}  // namespace

std::uint64_t byteSequenceLocation(Bytes pattern, Bytes data) {
    return firstOccurrence(data, pattern).value_or(kMxfLocationNotFound);
}

std::optional<Bytes> valueAfterTag(Bytes data, Bytes tag, std::uint64_t length) {
    const auto location = firstOccurrence(data, tag);
    if (!location) return std::nullopt;
    return ByteCursor(data.subspan(*location + tag.size())).take(length);
}

Value mxfValueInData(const QRXMXFKey& key, Bytes data, MxfValueForm form) {
    return answerOr(Value{}, "mxfValueInData", [&]() -> Value {
        const auto value = valueAfterTag(data, searchPattern(key), valueLength(key));
        if (!value) return std::nullopt;
        return textOfValue(*value, form);
    });
}

Value mxfValueInWindows(const QRXMXFKey& key, MxfWindows& windows, MxfValueForm form) {
    return answerOr(Value{}, "mxfValueInWindows", [&]() -> Value {
        // A value that stands whole in the start of the head is the head's first, too.
        if (auto value = mxfValueInData(key, windows.startOfHead(), form)) return value;
        if (auto value = mxfValueInData(key, windows.head(), form)) return value;
        return mxfValueInData(key, windows.tail(), form);
    });
}

Value mxfValueInSource(const QRXMXFKey& key, const ByteSource& source, MxfValueForm form) {
    MxfWindows windows(source);
    return mxfValueInWindows(key, windows, form);
}

Value mxfValueInFile(const QRXMXFKey& key, const FilePath& file, MxfValueForm form) {
    return answerOr(Value{}, "mxfValueInFile", [&]() -> Value {
        const FileByteSource source(file);
        if (!source.isOpen()) return std::nullopt;
        return mxfValueInSource(key, source, form);
    });
}

std::optional<Bytes> bytesFollowingMxfKey(Bytes pattern, Bytes data, std::int64_t location) {
    const std::uint64_t start =
        location < 0 ? byteSequenceLocation(pattern, data) : static_cast<std::uint64_t>(location);
    ByteCursor rest(data);
    if (!rest.skip(start) || !rest.skip(pattern.size())) return std::nullopt;
    // KEPT: data shorter than 1,024 bytes must all follow the pattern, which they can only do when
    // the pattern is empty and stands at 0.
    const auto following = rest.take(std::min(kFollowingBytes, data.size()));
    if (!following) return std::nullopt;
    const auto label = firstOccurrence(*following, kSmpteLabelPrefix);
    if (!label || *label > kLabelWithin) return std::nullopt;
    return following->first(*label);
}

}  // namespace qrx
