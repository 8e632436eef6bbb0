#include "readers/MovieReader.h"

#include <algorithm>

#include "foundation/PathText.h"
#include "readers/AiffReader.h"
#include "readers/ByteSource.h"
#include "readers/ByteWindow.h"
#include "readers/QuickTimeReader.h"
#include "readers/RiffReader.h"

namespace qrx {

std::size_t MovieDescription::count(TrackMedia media) const {
    return static_cast<std::size_t>(
        std::count_if(tracks.begin(), tracks.end(),
                      [media](const MovieTrack& track) { return track.media == media; }));
}

std::optional<MovieDescription> describeMovie(const ByteSource& source) {
    ByteWindow window(source);
    const auto magic = window.at(0, 4);
    if (!magic) return std::nullopt;
    switch (bigEndian32(*magic)) {
        case fourCharacters("RIFF"):
        case fourCharacters("RF64"):
        case fourCharacters("BW64"):
            return describeRiffMovie(window);
        case fourCharacters("FORM"):
            return describeAiffMovie(window);
        default:
            return describeQuickTimeMovie(window);
    }
}

std::optional<MovieDescription> MovieReader::open(const FilePath& path) const {
    const FileByteSource file(path);
    if (!file.isOpen()) return std::nullopt;
    auto movie = describeMovie(file);
    if (movie && !movie->displayName) movie->displayName = lastPathComponent(path);
    return movie;
}

}  // namespace qrx
