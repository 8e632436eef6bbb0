#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "app/ClipRecord.h"
#include "qrx/Commands.h"
#include "qrx/JsonText.h"
#include "qrx/Locations.h"
#include "qrx/ShownText.h"
#include "qrx/ToolReports.h"
#include "qrx/spans/Series.h"
#include "volumes/FileMatcher.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

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
        : options_(options), session_(session), locations_(options.paths, session) {
        listener_.onClip = [this](const PathDictionary& clip) { keep(clip); };
        listener_.onProgress = [this](const MatchProgress& progress) {
            session_.console.progress(progress.filesDone, seen_.size(), progress.currentFile);
        };
        listener_.onUnreadableFolder = [this](const FilePath& folder) {
            complain(folder, "cannot be read, or not to its end");
        };
        listener_.onMissingLocation = [this](const FilePath& location) {
            const Locations::Missing missing = locations_.missing(location);
            complain(missing.argument, missing.why);
        };
        listener_.isCancelled = &session.isCancelled;
    }

    int run() {
        reportToolProblems(session_.console);
        session_.console.startProgress();
        (void)matcher_.match([this] { return locations_.next(); }, listener_);
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
    /// Once, however often it is reached.
    void keep(const PathDictionary& clip) {
        if (seen_.insert(clip.filePath).second) clips_[clip.volumeTitle].push_back(clip.filePath);
    }

    [[nodiscard]] std::vector<Series> series() const {
        std::vector<Series> all;
        for (const auto& [title, clips] : clips_) {
            const QRXHDMediaVolumeUtilityObject* const utility =
                QRXHDMediaVolumeAggregate::sharedInstance().utilityWithTitle(title);
            if (utility == nullptr) continue;
            auto ofLayout = seriesAmong(*utility, clips, session_.isCancelled);
            std::move(ofLayout.begin(), ofLayout.end(), std::back_inserter(all));
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
    Locations locations_;
    FileMatcher matcher_{utilitiesThatDecide()};
    MatchListener listener_;
    std::unordered_set<FilePath> seen_;
    std::map<std::string, FilePaths> clips_;  ///< by layout
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
    addJobsOption(command, *tools);
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        job.tools = *tools;
        job.run = [options](Session& session) { return SeriesSearch(*options, session).run(); };
    });
}

}  // namespace qrx::tool
