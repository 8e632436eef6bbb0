#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <unordered_set>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "foundation/Text.h"
#include "qrx/Commands.h"
#include "qrx/JsonText.h"
#include "qrx/Names.h"
#include "qrx/ShownText.h"
#include "qrx/ToolReports.h"
#include "qrx/spans/NumberGaps.h"
#include "qrx/spans/P2Chain.h"
#include "volumes/FileMatcher.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXJVCMP4Utility.h"
#include "volumes/QRXJVCQTUtility.h"
#include "volumes/QRXPanasonicP2Utility.h"
#include "volumes/QRXSonyXDCAMExUtility.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
A recording that the camera split over several clips is one series: its pieces
are listed in playing order, then those that are missing. P2 clips name their
neighbours, so a missing first or last piece is seen, too, and a recording that
went on to another card is put together when both cards are named; of several
missing in a row only the outer two are known. Other cards number the pieces
from 1; a piece after the last number is not missed.

Exit status: 0 the search ran, whether pieces are missing or not; 1 something
could not be searched (it is named on standard error, the rest is done); 2 wrong
usage; 130 after Ctrl-C.

Examples:
  qrx series /media/me/CARD
  qrx series --format json CARD1 CARD2)";

struct SeriesOptions {
    std::vector<std::string> paths;
    std::string format = "text";
};

struct Series {
    std::string volumeTitle{};
    std::string spanKey{};
    std::string volumeKey{};
    FilePaths pieces{};  ///< in playing order
    std::vector<P2Link> missingClips{};
    std::vector<NumberGap> missingNumbers{};
    /// Absent: cannot be told.
    std::optional<bool> isComplete{};

    [[nodiscard]] bool missesPieces() const {
        return !missingClips.empty() || !missingNumbers.empty();
    }
};

using Utility = QRXHDMediaVolumeUtilityObject;

/// Where in a clip's name the number of the piece stands.
std::optional<std::size_t> partWithNumber(const Utility& utility) {
    if (utility.volumeType() == QRXSonyXDCAMExUtility().volumeType()) return 2;
    if (utility.volumeType() == QRXJVCMP4Utility().volumeType()) return 1;
    if (utility.volumeType() == QRXJVCQTUtility().volumeType()) return 1;
    return std::nullopt;
}

/// A single piece that misses none is no spanned recording.
void addIfSpanned(std::vector<Series>& all, Series series) {
    if (series.pieces.size() > 1 || series.missesPieces()) all.push_back(std::move(series));
}

// ---- by the numbers in the names

void addNumberedSeries(std::vector<Series>& all, const Utility& utility, const FilePaths& clips) {
    std::map<std::pair<std::string, std::string>, FilePaths> groups;
    for (const FilePath& clip : clips) {
        const auto key = utility.spanPartnerIdentifierForPath(clip);
        if (!key) continue;
        groups[{utility.volumePartnerIdentifierForFilePath(clip), *key}].push_back(clip);
    }
    const auto part = partWithNumber(utility);
    for (const auto& [keys, files] : groups) {
        Series series{.volumeTitle = utility.volumeTitle(),
                      .spanKey = keys.second,
                      .volumeKey = keys.first,
                      .pieces = utility.sortSpannedClipSeries(files)};
        if (const auto gaps = part ? numberGaps(files, *part) : std::nullopt) {
            series.missingNumbers = *gaps;
            series.isComplete = gaps->empty();
        }
        addIfSpanned(all, std::move(series));
    }
}

// ---- by the links of P2

FilePaths pathsInOrder(const std::vector<P2Piece>& pieces, const std::vector<std::size_t>& order) {
    FilePaths paths;
    for (const std::size_t i : order) {
        paths.push_back(pieces[i].path);
    }
    return paths;
}

Series p2Series(const Utility& utility, const std::string& shot,
                const std::vector<P2Piece>& pieces) {
    P2Chain chain = p2Chain(pieces);
    FilePaths inOrder = pathsInOrder(pieces, chain.order);
    // The utility goes by clip names and leaves the list as it is where those are not written.
    if (chain.isWhole) inOrder = utility.sortSpannedClipSeries(inOrder);
    return {.volumeTitle = utility.volumeTitle(),
            .spanKey = shot,
            .volumeKey = utility.volumePartnerIdentifierForFilePath(inOrder.front()),
            .pieces = inOrder,
            .missingClips = std::move(chain.missing),
            .missingNumbers = {},
            .isComplete = chain.isWhole};
}

bool hasClipTwice(const std::vector<P2Piece>& pieces) {
    std::unordered_set<std::string_view> seen;
    return std::any_of(pieces.begin(), pieces.end(), [&](const P2Piece& piece) {
        return !seen.insert(piece.self.identifier).second;
    });
}

/// A shot's identifier is unique in the world, so its pieces may lie on several cards; but when a
/// clip is there twice, these are copies of one card.
void addP2Shot(std::vector<Series>& all, const Utility& utility, const std::string& shot,
               std::vector<P2Piece> pieces) {
    if (!hasClipTwice(pieces)) {
        addIfSpanned(all, p2Series(utility, shot, pieces));
        return;
    }
    std::map<std::string, std::vector<P2Piece>> byCard;
    for (P2Piece& piece : pieces) {
        byCard[utility.volumePartnerIdentifierForFilePath(piece.path)].push_back(std::move(piece));
    }
    for (const auto& [card, ofCard] : byCard) {
        addIfSpanned(all, p2Series(utility, shot, ofCard));
    }
}

void addP2Series(std::vector<Series>& all, const Utility& utility, const FilePaths& clips,
                 const std::atomic<bool>& isCancelled) {
    std::map<std::string, std::vector<P2Piece>> shots;
    for (const FilePath& clip : clips) {
        if (isCancelled) return;
        const auto clipXml = utility.metadataFilePathForVideoFile(clip);
        auto piece = clipXml ? readP2Piece(clip, *clipXml) : std::nullopt;
        if (!piece) continue;
        const std::string shot = piece->shot;
        shots[shot].push_back(std::move(*piece));
    }
    for (auto& [shot, pieces] : shots) {
        addP2Shot(all, utility, shot, std::move(pieces));
    }
}

// ---- writing

std::string headline(const Series& series) {
    std::string text =
        fmt::format("{}  {}  {} {}, ", series.volumeTitle, shown(series.spanKey),
                    series.pieces.size(), series.pieces.size() == 1 ? "piece" : "pieces");
    if (!series.isComplete) return text + "whether all are there cannot be told";
    if (*series.isComplete) return text + "complete";
    return text + (series.missesPieces() ? "incomplete" : "their links contradict each other");
}

std::string missingLine(const P2Link& clip) {
    const std::string name = clip.clipName ? shown(*clip.clipName) + "  " : "";
    return "  missing: " + name + shown(clip.identifier) + "\n";
}

std::string missingLine(const NumberGap& gap) {
    const std::string rest = gap.first == gap.last ? "" : " to " + shown(gap.lastName);
    return "  missing: " + shown(gap.firstName) + rest + "\n";
}

std::string seriesText(const Series& series) {
    std::string text = headline(series) + "\n";
    for (const FilePath& piece : series.pieces) {
        text += "  " + shown(piece) + "\n";
    }
    for (const P2Link& clip : series.missingClips) {
        text += missingLine(clip);
    }
    for (const NumberGap& gap : series.missingNumbers) {
        text += missingLine(gap);
    }
    return text;
}

using Json = nlohmann::ordered_json;

std::string textJson(const std::string& text) {
    return isUtf8(text) ? text : shown(text);
}

Json missingJson(const Series& series) {
    auto missing = Json::array();
    for (const P2Link& clip : series.missingClips) {
        Json record;
        record["identifier"] = textJson(clip.identifier);
        record["clipName"] = nullptr;
        if (clip.clipName) record["clipName"] = textJson(*clip.clipName);
        missing.push_back(std::move(record));
    }
    for (const NumberGap& gap : series.missingNumbers) {
        Json record;
        record["firstNumber"] = gap.first;
        record["lastNumber"] = gap.last;
        record["firstName"] = textJson(gap.firstName);
        record["lastName"] = textJson(gap.lastName);
        missing.push_back(std::move(record));
    }
    return missing;
}

Json seriesJson(const Series& series) {
    Json record;
    record["volumeTitle"] = series.volumeTitle;
    record["spanKey"] = textJson(series.spanKey);
    record["volumeKey"] = textJson(series.volumeKey);
    record["complete"] = nullptr;
    if (series.isComplete) record["complete"] = *series.isComplete;
    record["pieces"] = Json::array();
    for (const FilePath& piece : series.pieces) {
        Json entry;
        addPath(entry, piece);
        record["pieces"].push_back(std::move(entry));
    }
    record["missing"] = missingJson(series);
    return record;
}

// ---- the command

/// The utilities by precedence down to the last one whose recordings may come in pieces. What comes
/// after it claims no piece, and asking it would run a tool on every other file.
FileMatcher::Utilities utilitiesThatDecide() {
    const auto shared = QRXHDMediaVolumeAggregate::hdUtilitiesOrderedByPrecedent();
    FileMatcher::Utilities all(shared.begin(), shared.end());
    while (!all.empty() && !all.back()->clipSpanningSupported()) {
        all.pop_back();
    }
    return all;
}

class SeriesSearch {
public:
    SeriesSearch(const SeriesOptions& options, Session& session)
        : options_(options), session_(session) {
        listener_.onClip = [this](const PathDictionary& clip) { keep(clip); };
        listener_.onProgress = [this](const MatchProgress& progress) {
            session_.console.progress(filesDone_ + progress.filesDone, seen_.size(),
                                      progress.currentFile);
        };
        listener_.onUnreadableFolder = [this](const FilePath& folder) {
            complain(folder, "cannot be read, or not to its end");
        };
        listener_.isCancelled = &session.isCancelled;
    }

    int run() {
        reportToolProblems(session_.console);
        session_.console.startProgress();
        for (const std::string& path : options_.paths) {
            search(path);
        }
        session_.console.stopProgress();
        const std::vector<Series> all = series();
        if (session_.isCancelled) return kTrouble;
        if (options_.format == "json") {
            writeJson(all);
        } else {
            writeText(all);
        }
        return status_;
    }

private:
    void search(const std::string& argument) {
        if (session_.isCancelled) return;
        const FilePath location = absolutePath(argument);
        if (const auto why = whyMissing(location)) {
            complain(argument, *why);
            return;
        }
        filesDone_ += matcher_.match({location}, listener_).filesDone;
    }

    /// Once, however often it is reached.
    void keep(const PathDictionary& clip) {
        if (seen_.insert(clip.filePath).second) clips_[clip.volumeTitle].push_back(clip.filePath);
    }

    [[nodiscard]] std::vector<Series> series() const {
        std::vector<Series> all;
        for (const auto& [title, clips] : clips_) {
            const Utility* const utility =
                QRXHDMediaVolumeAggregate::sharedInstance().utilityWithTitle(title);
            if (utility == nullptr || !utility->clipSpanningSupported()) continue;
            if (utility->volumeType() == QRXPanasonicP2Utility().volumeType()) {
                addP2Series(all, *utility, clips, session_.isCancelled);
            } else {
                addNumberedSeries(all, *utility, clips);
            }
        }
        return all;
    }

    void writeText(const std::vector<Series>& all) {
        std::string between;
        for (const Series& each : all) {
            session_.output.write(std::exchange(between, "\n") + seriesText(each));
        }
    }

    void writeJson(const std::vector<Series>& all) {
        auto records = Json::array();
        for (const Series& each : all) {
            records.push_back(seriesJson(each));
        }
        constexpr int kIndent = 2;
        session_.output.write(jsonText(records, kIndent) + "\n");
    }

    void complain(const std::string& path, const std::string& why) {
        session_.console.say((path.empty() ? "''" : shown(path)) + ": " + why);
        status_ = kTrouble;
    }

    const SeriesOptions& options_;
    Session& session_;
    FileMatcher matcher_{utilitiesThatDecide()};
    MatchListener listener_;
    std::unordered_set<FilePath> seen_;
    std::map<std::string, FilePaths> clips_;  ///< by layout
    std::uint64_t filesDone_ = 0;
    int status_ = kDone;
};

}  // namespace

void addSeriesCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<SeriesOptions>();
    auto tools = std::make_shared<ToolOptions>();
    CLI::App& command =
        *program.add_subcommand("series", "List recordings in several pieces, and what is missing");
    command.add_option("PATH", options->paths, "Cards, folders or files")->required();
    command.add_option("-f,--format", options->format, "How it is written")
        ->type_name("text|json")
        ->capture_default_str()
        ->check(CLI::IsMember({"text", "json"}).description(""));
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        job.tools = *tools;
        job.run = [options](Session& session) { return SeriesSearch(*options, session).run(); };
    });
}

}  // namespace qrx::tool
