#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <fmt/core.h>
#include <unistd.h>

#include "qrx/ClipWriter.h"
#include "qrx/Commands.h"
#include "qrx/Locations.h"
#include "qrx/ShownText.h"
#include "qrx/Terminal.h"
#include "qrx/ToolReports.h"
#include "volumes/FileMatcher.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
Formats:
  table    columns LAYOUT, QT (QuickTime reads it), PATH. Characters that could
           harm a terminal are shown as \n, \x1b, \u{202e}; a backslash as \\.
           On a terminal long paths lose their middle (see --wide).
  json     one array of {"filePath": TEXT, "volumeTitle": TEXT, "qt": BOOL}
  ndjson   one such object a line, written as soon as the clip is found
  csv      RFC 4180: filePath,volumeTitle,qt,filePathBytes
  A path that is not UTF-8 stands in "filePathBytes", in base64, in the place of
  "filePath"; in CSV so does a path with control characters such as line ends.

Several files are examined at a time (--jobs); the output is the same for any
number of them.

With --quick ffmpeg is not run on a file that no card layout claims and whose name
ends in bmp, jpg, jpeg, gif, png, tif, tiff, psd, pdf, txt, rtf, xml, smi, cpi, mpl,
int, bnp, bdm, thm, r3d, aif, aiff or dmg, in any case and with or without a dot
("PRINT" ends in "int"). Left out are then movies under such a name, renamed to
clip.jpg, for example; real pictures, texts and sounds are no clips either way.

Names that begin with "-" go behind "--".

Exit status: 0 the scan ran; 1 something could not be scanned or written (it is
named on standard error, the rest is done); 2 wrong usage; 130 after Ctrl-C.

Examples:
  qrx scan /media/me/CARD
  qrx scan --format csv ~/rushes > clips.csv
  find . -name '*.MTS' -print0 | qrx scan --from-stdin -0 --format ndjson)";

struct ScanOptions {
    std::vector<std::string> paths;
    std::string format = "table";
    bool isWide = false;
    bool readsNames = false;
    bool namesEndInNul = false;
    bool isQuick = false;
};

std::size_t longestTitle() {
    std::size_t longest = 0;
    for (const auto* const utility : QRXHDMediaVolumeAggregate::allDefinedHDUtilities()) {
        longest = std::max(longest, utility->volumeTitle().size());
    }
    return longest;
}

std::unique_ptr<ClipWriter> makeWriter(const ScanOptions& options, Output& output) {
    if (options.format == "json") return makeClipJson(output);
    if (options.format == "ndjson") return makeClipNdjson(output);
    if (options.format == "csv") return makeClipCsv(output);
    const bool onTerminal = isTerminal(STDOUT_FILENO);
    const std::size_t columns = onTerminal && !options.isWide ? terminalColumns(STDOUT_FILENO) : 0;
    return makeClipTable(
        output, {.columns = columns, .titleColumns = longestTitle(), .flushesEachRow = onTerminal});
}

/// One scan of all locations, in the order in which they are named.
class Scan {
public:
    Scan(const ScanOptions& options, Session& session)
        : session_(session),
          writer_(makeWriter(options, session.output)),
          locations_(options.paths, session),
          matcher_(MatchOptions{.isQuick = options.isQuick}) {
        if (options.readsNames) locations_.readNames(options.namesEndInNul ? '\0' : '\n');
        listener_.onClip = [this](const PathDictionary& clip) { write(clip); };
        listener_.onProgress = [this](const MatchProgress& progress) {
            session_.console.progress(progress.filesDone, progress.clipsFound,
                                      progress.currentFile);
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
        const MatchSummary summary =
            matcher_.match([this] { return locations_.next(); }, listener_);
        session_.console.stopProgress();
        if (session_.isCancelled) return kTrouble;
        writer_->finish();
        if (isTerminal(STDERR_FILENO)) session_.console.say(summaryText(summary));
        return status_;
    }

private:
    void write(const PathDictionary& clip) {
        session_.console.aside([&] { writer_->add(clip); });
        if (!session_.output.isGood()) session_.isCancelled = true;
    }

    [[nodiscard]] static std::string summaryText(const MatchSummary& summary) {
        return fmt::format("{} {} in {} {}", summary.clipsFound,
                           summary.clipsFound == 1 ? "clip" : "clips", summary.filesDone,
                           summary.filesDone == 1 ? "file" : "files");
    }

    void complain(const std::string& path, const std::string& why) {
        session_.console.say((path.empty() ? "''" : shown(path)) + ": " + why);
        status_ = kTrouble;
    }

    Session& session_;
    std::unique_ptr<ClipWriter> writer_;
    Locations locations_;
    FileMatcher matcher_;
    MatchListener listener_;
    int status_ = kDone;
};

void refuseContradictions(const ScanOptions& options) {
    if (options.paths.empty() && !options.readsNames) {
        throw CLI::ValidationError("PATH", "at least one is needed, or --from-stdin");
    }
}

}  // namespace

void addScanCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<ScanOptions>();
    auto tools = std::make_shared<ToolOptions>();
    CLI::App& command = *program.add_subcommand("scan", "List the clips at the given paths");
    command.add_option("PATH", options->paths, "Cards, folders or files");
    command.add_option("-f,--format", options->format, "How clips are written")
        ->type_name("table|json|ndjson|csv")
        ->capture_default_str()
        ->check(CLI::IsMember({"table", "json", "ndjson", "csv"}).description(""));
    command.add_flag("--wide", options->isWide, "Table: never shorten a path");
    CLI::Option* const fromStdin = command.add_flag(
        "--from-stdin", options->readsNames, "Read more paths from standard input, one a line");
    command
        .add_flag("-0,--null", options->namesEndInNul,
                  "Those paths end in a NUL byte (find -print0)")
        ->needs(fromStdin);
    command.add_flag("--quick", options->isQuick,
                     "Spare ffmpeg files whose extension is one of files without video");
    addJobsOption(command, *tools);
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        refuseContradictions(*options);
        job.tools = *tools;
        job.run = [options](Session& session) { return Scan(*options, session).run(); };
    });
}

}  // namespace qrx::tool
