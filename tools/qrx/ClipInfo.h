#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"
#include "qrx/ClipMetadata.h"
#include "timecode/VideoFrameRate.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx::tool {

/// What the utility of a clip answers about it.
struct ClipInfo {
    FilePath file;
    std::string volumeTitle;
    std::uint64_t volumeType = 0;
    QRXVideoFrameRate frameRate = QRXVideoFrameRateUndefined;
    std::optional<std::string> uniqueIdentifier;
    std::string startTimecode;
    std::optional<std::string> endTimecode;
    bool isDropFrame = false;
    std::optional<FilePath> sidecar;
    std::optional<FilePaths> audioFiles;
    bool isSpanned = false;
    std::optional<std::string> spanKey;
    std::string volumeKey;
    std::vector<MetadataEntry> metadata;  ///< those that the layout found
};

/// "59.94i"; "undefined" for the undefined rate and for numbers that are none.
[[nodiscard]] std::string rateName(QRXVideoFrameRate rate);

/// Everything that `utility` answers about the clip at `file`.
[[nodiscard]] ClipInfo infoOf(const FilePath& file, const QRXHDMediaVolumeUtilityObject& utility);

}  // namespace qrx::tool
