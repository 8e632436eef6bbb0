#include "qrx/cards/LooseMovies.h"

#include <array>
#include <string>
#include <vector>

#include <fmt/core.h>

namespace qrx::tool {

namespace {

struct Container {
    std::string_view extension;
    std::string_view format;  ///< as ffmpeg names it
    bool hasTimecode;
};

constexpr std::array kContainers{
    Container{"mov", "mov", true},
    Container{"mp4", "mp4", false},
    Container{"avi", "avi", false},
    Container{"mkv", "matroska", false},
};

std::string movieName(unsigned index) {
    return fmt::format("movie{:04}.{}", index + 1,
                       kContainers[index % kContainers.size()].extension);
}

void makeMovie(NewCard& card, const MediaTool& media, unsigned index) {
    const Container& container = kContainers[index];
    const bool isAvi = container.extension == "avi";
    const bool isMatroska = container.extension == "mkv";
    const std::string video = isAvi ? media.encoder({"mpeg4", "mjpeg"})
                                    : media.encoder({"libx264", "libopenh264", "mpeg4"});
    // AC-3 in the Matroska file: with AAC its report names no bit rate at all, and a video without
    // one counts as undescribed.
    const std::string audio = isAvi        ? media.encoder({"mp2", "pcm_s16le"})
                              : isMatroska ? media.encoder({"ac3", "ac3_fixed", "mp2"})
                                           : media.encoder({"aac", "ac3"});
    std::vector<std::string> options{"-c:v", video, "-c:a", audio, "-b:a", "128k"};
    if (video == "libx264") options.insert(options.end(), {"-preset", "ultrafast"});
    if (container.hasTimecode) options.insert(options.end(), {"-timecode", "01:00:00;00"});
    options.insert(options.end(), {"-f", std::string(container.format)});
    media.makeMovie(options, card.pathForNewFile(movieName(index)));
}

}  // namespace

void makeLooseMovies(NewCard& card, const MediaTool& media, unsigned clips) {
    for (unsigned index = 0; index < clips; ++index) {
        if (index < kContainers.size()) {
            makeMovie(card, media, index);
        } else {
            card.copy(movieName(index % kContainers.size()), movieName(index));
        }
    }
    media.makeStill({"-c:v", media.encoder({"mjpeg"}), "-f", "mjpeg"},
                    card.pathForNewFile("still.jpg"));
    card.write("notes.txt", "Second unit, day 3. The wide shots are movie0001 and movie0002.\n");
    card.write("edit.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<edit name=\"day 3\"/>\n");
}

}  // namespace qrx::tool
