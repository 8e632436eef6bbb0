#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx::tool {

// What a camera report tells, whatever it is written as. An absent value is not known.

/// A small picture of a clip.
struct Poster {
    std::string jpeg{};  ///< bytes of the file; empty where there is no picture
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

struct ReportClip {
    FilePath file{};
    std::size_t position = 0;  ///< in recording order within its card and layout, from 1
    std::optional<std::string> startTimecode{};
    std::optional<std::string> endTimecode{};
    std::optional<bool> isDropFrame{};
    std::optional<std::string> frameRate{};  ///< by name: "29.97", "59.94i"
    std::optional<double> seconds{};
    std::optional<std::uint64_t> bytes{};  ///< of the clip's own file
    std::optional<std::string> uniqueIdentifier{};
    std::optional<std::size_t> audioFiles{};    ///< separate sound files
    std::optional<std::size_t> audioStreams{};  ///< sound streams in the clip's own file
    std::optional<std::uint32_t> width{};       ///< pixels
    std::optional<std::uint32_t> height{};
    std::optional<std::string> codec{};
    /// Sidecar, sound files and raw footage that the layout names for this clip.
    FilePaths companions{};
    Poster poster{};
};

/// One place in a recording: a clip, or what should stand there and does not.
struct ReportPiece {
    std::optional<ReportClip> clip{};
    std::string missingName{};     ///< "632_0001_02"; several in a row "632_0001_02 to 632_0001_04"
    std::size_t missingCount = 0;  ///< 0 for a clip
};

/// A clip by itself, or a recording that the camera split over several.
struct ReportRecording {
    std::string spanKey{};  ///< empty for a clip by itself
    std::vector<ReportPiece> pieces{};
    std::optional<bool> isComplete{};       ///< of a spanned recording
    std::vector<std::string> otherCards{};  ///< on which more of its pieces lie

    [[nodiscard]] bool isSpanned() const { return !spanKey.empty() || pieces.size() > 1; }
    [[nodiscard]] std::size_t missing() const;
    [[nodiscard]] std::size_t clips() const;
};

struct ReportTotals {
    std::size_t clips = 0;
    std::size_t files = 0;  ///< the clips' own files and those that belong to them
    std::uint64_t bytes = 0;
    double seconds = 0;               ///< of the clips whose duration is known
    std::size_t withoutDuration = 0;  ///< clips
    std::size_t missingPieces = 0;

    void add(const ReportClip& clip);
    void add(const ReportTotals& other);
};

struct ReportLayout {
    std::string title{};
    std::vector<ReportRecording> recordings{};  ///< in recording order
    ReportTotals totals{};
};

/// Files that nobody claimed for the same reason.
struct UnclaimedGroup {
    std::string reason{};
    std::string kind{};  ///< extension in upper case; empty for names without one
    bool mayBeFootage = false;
    std::size_t files = 0;
    std::uint64_t bytes = 0;
    FilePaths examples{};  ///< the first few
};

struct ReportCard {
    FilePath root{};      ///< the folder at which the card's structure begins
    std::string label{};  ///< of the volume mounted there; empty when not known
    std::vector<ReportLayout> layouts{};
    std::vector<UnclaimedGroup> unclaimed{};  ///< possible footage first
    ReportTotals totals{};
};

struct Report {
    std::vector<std::string> paths{};  ///< as they were given
    std::time_t made = 0;
    std::vector<ReportCard> cards{};
    ReportTotals totals{};
    /// What could not be looked at, as lines that are safe to show.
    std::vector<std::string> problems{};
};

}  // namespace qrx::tool
