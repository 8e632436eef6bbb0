#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/QRXObject.h"

namespace qrx {

/// The codecs that the ffmpeg tool is asked to write. Any other number can be held; 10 is no codec.
enum QRXFFmpegVideoCodec : std::uint64_t {
    QRXFFmpegVideoCodecAppleQuickTime = 0,
    QRXFFmpegVideoCodecH264 = 1,
    QRXFFmpegVideoCodecMPEG4 = 2,
    QRXFFmpegVideoCodecMPEG2 = 3,
    QRXFFmpegVideoCodecMPEG1 = 4,
    QRXFFmpegVideoCodecHUFFYUV = 5,
    QRXFFmpegVideoCodecFlash = 6,
    QRXFFmpegVideoCodecDVVideo = 7,
    QRXFFmpegVideoCodecMotionJPEG = 8,
    QRXFFmpegVideoCodecWindowsMedia = 9,
    QRXFFmpegVideoCodecAvidDNX = 11,
};

/// Fixed facts about the ffmpeg tool. A number that is no codec answers as a nameless MPEG 4:
/// title "MPEG 4", argument "mpeg4", no file extensions, audio copied.
class QRXFFmpegDefinitions : public QRXObject {
public:
    /// 0 to 9 and 11.
    [[nodiscard]] static std::vector<QRXFFmpegVideoCodec> allFFmpegVideoCodecs();
    [[nodiscard]] static std::string titleForFFmpegVideoCodec(QRXFFmpegVideoCodec codec);
    /// What follows "-vcodec" on the tool's command line.
    [[nodiscard]] static std::string commandLineArgumentForVideoCodec(QRXFFmpegVideoCodec codec);
    /// Lower case, without a dot.
    [[nodiscard]] static std::vector<std::string> fileExtensionsForVideoCodec(
        QRXFFmpegVideoCodec codec);
    /// What follows "-acodec" on the tool's command line.
    [[nodiscard]] static std::string audioCommandLineCodecForVideoCodec(QRXFFmpegVideoCodec codec);

    /// Where the tool stands when it was installed beside the host application.
    [[nodiscard]] static std::string defaultFFmpegPath();
    /// Ends of the names of files that are never video; lower case, without a dot.
    [[nodiscard]] static std::vector<std::string> invalidVideoFileExtensions();
};

}  // namespace qrx
