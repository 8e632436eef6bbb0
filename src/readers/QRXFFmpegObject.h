#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/FilePath.h"
#include "foundation/QRXObject.h"

namespace qrx {

/// Knows where the ffmpeg tool is, and which files need not be shown to it.
class QRXFFmpegObject : public QRXMediaObject {
public:
    QRXFFmpegObject() = default;
    QRXFFmpegObject(const QRXFFmpegObject&) = delete;
    QRXFFmpegObject& operator=(const QRXFFmpegObject&) = delete;
    ~QRXFFmpegObject() override = default;

    /// The path that was set, at first QRXFFmpegDefinitions::defaultFFmpegPath().
    [[nodiscard]] FilePath ffmpegPath() const;
    /// From now on this path is used as it is, also when nothing is there.
    void setFfmpegPath(FilePath path);

    /// The tool to run, looked up at every call: the path that was set here; else the one that the
    /// host chose for the whole process; else the default where something is there; else the first
    /// `ffmpeg` on PATH; else the default.
    [[nodiscard]] FilePath pathOfToolToRun() const;

    /// Whether the tool may be shown `file`: never a FIFO, socket or device, which it would wait
    /// for or act upon, nor a path with a NUL, which it would read as another one.
    [[nodiscard]] static bool mayBeShownToTool(const FilePath& file);

    /// Whether `file` has the name of something that is never video. A plain test of how the name
    /// ends, in any case and without a dot: "checkpoint" ends in "int" and is invalid.
    [[nodiscard]] static bool filePathHasInvalidVideoFileExtension(std::string_view file);
    /// The same for a path that is in upper case already.
    [[nodiscard]] static bool upperCasedFilePathHasInvalidVideoFileExtension(
        std::string_view upperCasedFile);

private:
    mutable std::mutex mutex_;
    std::optional<FilePath> ffmpegPath_;
};

}  // namespace qrx
