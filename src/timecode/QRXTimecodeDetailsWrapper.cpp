#include "timecode/QRXTimecodeDetailsWrapper.h"

#include <string_view>

namespace qrx {

namespace {

// KEPT: the keyed archive calls the same properties "rate", "filePath" and "timecode".
constexpr std::string_view kFrameRateKey = "frame";
constexpr std::string_view kSourceFilePathKey = "filePath";
constexpr std::string_view kStartTimecodeKey = "tc";

template <class Value>
const Value* valueFor(std::string_view key,
                      const QRXTimecodeDetailsWrapper::Dictionary& dictionary) {
    const auto entry = dictionary.find(key);
    return entry == dictionary.end() ? nullptr : std::get_if<Value>(&entry->second);
}

}  // namespace

QRXTimecodeDetailsWrapper::Dictionary QRXTimecodeDetailsWrapper::wrapperDictionary() const {
    Dictionary dictionary;
    dictionary.emplace(kFrameRateKey, std::uint64_t{frameRate_});
    if (sourceFilePath_) dictionary.emplace(kSourceFilePathKey, *sourceFilePath_);
    if (startTimecode_) dictionary.emplace(kStartTimecodeKey, *startTimecode_);
    return dictionary;
}

QRXTimecodeDetailsWrapper QRXTimecodeDetailsWrapper::wrapperFromDictionary(
    const Dictionary& dictionary) {
    QRXTimecodeDetailsWrapper wrapper;
    if (const auto* rate = valueFor<std::uint64_t>(kFrameRateKey, dictionary)) {
        wrapper.frameRate_ = static_cast<QRXVideoFrameRate>(*rate);
    }
    if (const auto* path = valueFor<std::string>(kSourceFilePathKey, dictionary)) {
        wrapper.sourceFilePath_ = *path;
    }
    if (const auto* timecode = valueFor<std::string>(kStartTimecodeKey, dictionary)) {
        wrapper.startTimecode_ = *timecode;
    }
    return wrapper;
}

}  // namespace qrx
