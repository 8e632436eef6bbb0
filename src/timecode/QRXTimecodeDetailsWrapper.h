#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>

#include "foundation/FilePath.h"
#include "foundation/KeyedArchive.h"
#include "timecode/VideoFrameRate.h"

namespace qrx {

/// What travels with a clip about its timecode: the rate, the clip and where it starts.
class QRXTimecodeDetailsWrapper {
public:
    /// "frame" (number of the rate, always there), "filePath" and "tc" (texts, only when set).
    using Dictionary = std::map<std::string, std::variant<std::uint64_t, std::string>, std::less<>>;

    QRXTimecodeDetailsWrapper() = default;
    /// From an archive: what is missing there is as in a new wrapper.
    explicit QRXTimecodeDetailsWrapper(const ArchivedObject& coder);
    /// The wrapper that is the root of a keyed archive, binary or XML; nothing when the bytes are
    /// no archive or its root is of another class. Does not throw.
    [[nodiscard]] static std::optional<QRXTimecodeDetailsWrapper> wrapperOfArchive(
        std::span<const std::byte> bytes);

    /// The class as archives name it, with its ancestors.
    [[nodiscard]] ArchiveClasses archiveClasses() const;
    /// Writes "rate" always, "filePath" and "timecode" only when set: keys of their own, not those
    /// of the dictionary.
    void encodeWithCoder(ArchiveRecord& coder) const;

    [[nodiscard]] QRXVideoFrameRate frameRate() const { return frameRate_; }
    [[nodiscard]] const std::optional<FilePath>& sourceFilePath() const { return sourceFilePath_; }
    [[nodiscard]] const std::optional<std::string>& startTimecode() const { return startTimecode_; }
    void setFrameRate(QRXVideoFrameRate frameRate) { frameRate_ = frameRate; }
    void setSourceFilePath(std::optional<FilePath> path) { sourceFilePath_ = std::move(path); }
    void setStartTimecode(std::optional<std::string> timecode) {
        startTimecode_ = std::move(timecode);
    }

    [[nodiscard]] Dictionary wrapperDictionary() const;
    /// Takes what `dictionary` has; a missing entry, or one of the other type, leaves its property
    /// as it is in a new wrapper.
    [[nodiscard]] static QRXTimecodeDetailsWrapper wrapperFromDictionary(
        const Dictionary& dictionary);

    [[nodiscard]] friend bool operator==(const QRXTimecodeDetailsWrapper&,
                                         const QRXTimecodeDetailsWrapper&) = default;

private:
    QRXVideoFrameRate frameRate_ = QRXVideoFrameRateUndefined;
    std::optional<FilePath> sourceFilePath_;
    std::optional<std::string> startTimecode_;
};

}  // namespace qrx
