#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/FilePath.h"
#include "metadata/QRXMetadataWrapper.h"
#include "readers/QRXFFmpegObject.h"

namespace qrx {

/// Asks the ffmpeg tool what is in a file. Each call runs the tool once and waits for it. No
/// operation throws.
class QRXFFmpegTerminalWrapper : public QRXFFmpegObject {
public:
    /// What "ffmpeg -i FILE" writes: its standard output, or its standard error when that is empty.
    /// Nothing when there is no tool, when it could not be run or was ended by the time limit, and
    /// for a FIFO, socket or device, which the tool is never shown.
    [[nodiscard]] std::optional<std::string> runFFmpegInfoCommandForVideoFile(
        const FilePath& file) const;

    /// See reportField.
    [[nodiscard]] std::optional<std::string> valueFromResult(std::string_view result,
                                                             std::string_view identifier,
                                                             std::string_view separator) const;

    /// What the tool found; every key is at QRXMediaMetadataNotFound when it described no input.
    [[nodiscard]] QRXMetadataWrapper metadataWrapperForVideoFile(const FilePath& file) const;

    /// KEPT: always 0. The number of audio streams is in the metadata, under
    /// QRXMediaMetadataAudioChannelsKey.
    [[nodiscard]] std::uint64_t numberOfAudioChannelsInVideoFile(const FilePath& file) const;
};

}  // namespace qrx
