#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace qrx::tool {

/// A file that is to be written.
struct NewMedia {
    std::vector<std::string> options;  ///< what stands before the path: timecode, container
    std::string path;
};

/// Makes small real media with the installed ffmpeg: colour bars, a tone, one second.
class MediaTool {
public:
    /// Throws CardProblem when there is no ffmpeg.
    MediaTool();

    /// The first of the encoders that the tool has. Throws CardProblem when it has none of them.
    [[nodiscard]] std::string encoder(std::initializer_list<std::string_view> wanted) const;

    /// Encodes picture and sound into a new file at `path`.
    /// @param options  what stands before the path: codecs, container.
    void makeMovie(const std::vector<std::string>& options, const std::string& path) const;
    /// Writes the tracks of the file at `from` into each of the new files, as they are. One run of
    /// the tool writes many of them: a card of some hundred clips takes seconds, not minutes.
    void rewrap(const std::string& from, const std::vector<NewMedia>& files) const;
    /// Encodes a single picture.
    void makeStill(const std::vector<std::string>& options, const std::string& path) const;

private:
    [[nodiscard]] std::string output(const std::vector<std::string>& arguments) const;

    std::string tool_;
    std::vector<std::string> encoders_;
};

}  // namespace qrx::tool
