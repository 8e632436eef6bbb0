#include "timecode/QRXTimecodeDetailsWrapper.h"

#include <string_view>

#include "foundation/NeutralAnswer.h"

namespace qrx {

namespace {

// KEPT: the keyed archive calls the same properties "rate", "filePath" and "timecode".
constexpr std::string_view kFrameRateKey = "frame";
constexpr std::string_view kSourceFilePathKey = "filePath";
constexpr std::string_view kStartTimecodeKey = "tc";

constexpr std::string_view kFrameRateArchiveKey = "rate";
constexpr std::string_view kSourceFilePathArchiveKey = "filePath";
constexpr std::string_view kStartTimecodeArchiveKey = "timecode";
constexpr const char* kArchiveName = "QRXTimecodeDetailsWrapper";

template <class Value>
const Value* valueFor(std::string_view key,
                      const QRXTimecodeDetailsWrapper::Dictionary& dictionary) {
    const auto entry = dictionary.find(key);
    return entry == dictionary.end() ? nullptr : std::get_if<Value>(&entry->second);
}

}  // namespace

QRXTimecodeDetailsWrapper::QRXTimecodeDetailsWrapper(const ArchivedObject& coder)
    : sourceFilePath_(coder.decodeText(kSourceFilePathArchiveKey)),
      startTimecode_(coder.decodeText(kStartTimecodeArchiveKey)) {
    if (const auto rate = coder.decodeNumber(kFrameRateArchiveKey)) {
        frameRate_ = static_cast<QRXVideoFrameRate>(*rate);
    }
}

std::optional<QRXTimecodeDetailsWrapper> QRXTimecodeDetailsWrapper::wrapperOfArchive(
    std::span<const std::byte> bytes) {
    using Answer = std::optional<QRXTimecodeDetailsWrapper>;
    return answerOr(Answer(), "wrapperOfArchive", [&]() -> Answer {
        const auto root = ArchivedObject::rootOfKeyedArchive(bytes);
        if (!root || !root->isOfClass(kArchiveName)) return std::nullopt;
        return QRXTimecodeDetailsWrapper(*root);
    });
}

ArchiveClasses QRXTimecodeDetailsWrapper::archiveClasses() const {
    return {kArchiveName, "NSObject"};
}

void QRXTimecodeDetailsWrapper::encodeWithCoder(ArchiveRecord& coder) const {
    coder.encodeNumber(kFrameRateArchiveKey, std::uint64_t{frameRate_});
    coder.encodeText(kSourceFilePathArchiveKey, sourceFilePath_);
    coder.encodeText(kStartTimecodeArchiveKey, startTimecode_);
}

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
