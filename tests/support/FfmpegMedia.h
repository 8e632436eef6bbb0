#pragma once

#include <map>
#include <string>
#include <vector>

#include "support/TemporaryFolder.h"

namespace qrx::test {

/// Real media files, written by the installed ffmpeg into a folder of their own that is gone when
/// the test program ends. Every operation throws std::runtime_error, with the tool's own words,
/// when a tool is missing or fails: a media test never passes without its media.
class FfmpegMedia {
public:
    /// The files of this test program.
    [[nodiscard]] static FfmpegMedia& shared();

    /// Full path of the file `name` (may have folders in it), written by
    /// `ffmpeg <arguments> <path>` when it is first asked for.
    ///
    ///     shared().file("sound.m4a", {"-f", "lavfi", "-i", "sine", "-t", "1"})
    [[nodiscard]] std::string file(const std::string& name,
                                   const std::vector<std::string>& arguments);

    /// Full path of the file `name` that `ffmpeg <arguments> <path of written>` leaves beside the
    /// one that it is told to write: the media of a playlist. Both lie in one folder.
    [[nodiscard]] std::string fileBeside(const std::string& name, const std::string& written,
                                         const std::vector<std::string>& arguments);

    /// Full path of a plain text file in the same folder.
    [[nodiscard]] std::string text(const std::string& name, const std::string& contents);

private:
    TemporaryFolder folder_;
    std::map<std::string, std::string> made_;
};

/// Arguments of a one-second picture of bars, 64 x 48 at 25 frames a second.
[[nodiscard]] std::vector<std::string> testPicture();
/// Arguments of one second of a tone, mono at 8,000 samples a second.
[[nodiscard]] std::vector<std::string> testTone();
/// Both, picture first; `more` follows the inputs.
[[nodiscard]] std::vector<std::string> pictureAndTone(const std::vector<std::string>& more = {});

/// What `ffmpeg -h <topic>` says, e.g. of "muxer=mov".
[[nodiscard]] std::string ffmpegHelp(const std::string& topic);

/// One stream as ffprobe reports it.
struct ProbedStream {
    std::string codecType;  ///< "video", "audio", "subtitle", "data"; "" where ffprobe has no name
    std::string codecTag;   ///< four characters, e.g. "tmcd"
    bool attachedPicture = false;  ///< cover art
    int width = 0;                 ///< coded size in pixels; 0 without a picture
    int height = 0;
};

/// The streams of the file at `path`; none where ffprobe cannot open it.
[[nodiscard]] std::vector<ProbedStream> probedStreams(const std::string& path);

}  // namespace qrx::test
