#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "foundation/FilePath.h"
#include "timecode/VideoFrameRate.h"

namespace qrx {

/// What travels with a clip about its timecode: the rate, the clip and where it starts.
class QRXTimecodeDetailsWrapper {
public:
    /// "frame" (number of the rate, always there), "filePath" and "tc" (texts, only when set).
    using Dictionary = std::map<std::string, std::variant<std::uint64_t, std::string>, std::less<>>;

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
