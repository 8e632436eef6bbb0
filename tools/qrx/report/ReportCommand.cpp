#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include <fmt/core.h>
#include <unistd.h>

#include "foundation/OrderedWork.h"
#include "platform/ports/Services.h"
#include "qrx/Commands.h"
#include "qrx/Names.h"
#include "qrx/ShownText.h"
#include "qrx/Terminal.h"
#include "qrx/ToolReports.h"
#include "qrx/report/Collector.h"
#include "qrx/report/OnceRunner.h"
#include "qrx/report/ReportFile.h"
#include "qrx/report/ReportWriters.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
A camera report: per card and layout the clips in the order of recording, with
poster, timecode, rate, duration, size, identifier and sound; recordings in
several pieces drawn together, with what is missing; totals; and what no layout
claims. What is not known is shown as such.

Formats:
  html  one page that needs no network, to read, filter, sort and print. It
        needs -o, so that no card is written to by accident.
  csv   RFC 4180, one record a clip; bytes, seconds, pixels
  json  one object with totals, cards and one record a clip
csv and json go to standard output without -o. The file appears when it is whole;
one that exists is replaced with --force only.

Files whose names say that they hold no video are not shown to ffmpeg (--exact
shows them, as a scan does).

Exit status: 0 the report was written; 1 something could not be looked at (the
report names it) or written; 2 wrong usage; 130 after Ctrl-C.

Examples:
  qrx report /media/me/CARD -o day1.html
  qrx report A001 A002 --format csv > clips.csv)";

struct ReportOptions {
    std::vector<std::string> paths;
    std::string format = "html";
    std::string output;
    bool replaces = false;
    bool leavesPostersOut = false;
    bool isExact = false;

    [[nodiscard]] bool goesToStandardOutput() const { return output.empty() || output == "-"; }
};

void write(const Report& report, const std::string& format, const TakeText& take) {
    if (format == "csv") {
        writeReportCsv(report, take);
    } else if (format == "json") {
        writeReportJson(report, take);
    } else {
        writeReportPage(report, take);
    }
}

class Reporting {
public:
    Reporting(const ReportOptions& options, Session& session)
        : options_(options), session_(session) {}

    int run() {
        try {
            // First of all, so that a name that cannot be written is told before the work is done.
            if (!options_.goesToStandardOutput()) openFile();
            collect();
            if (session_.isCancelled) return kTrouble;
            hand();
        } catch (const std::system_error& fault) {
            session_.console.stopProgress();
            session_.console.say(fmt::format("{}: {}", shown(options_.output), problem(fault)));
            return kTrouble;
        }
        return report_.problems.empty() ? kDone : kTrouble;
    }

private:
    void openFile() {
        file_.emplace(absolutePath(options_.output),
                      options_.replaces ? Existing::replaced : Existing::kept);
    }

    static std::string problem(const std::system_error& fault) {
        const bool exists = fault.code() == std::errc::file_exists;
        return exists ? "exists already (--force replaces a file)" : fault.code().message();
    }

    void collect() {
        reportToolProblems(session_.console);
        auto& runner = platform::services().processRunner;
        runner = std::make_shared<OnceRunner>(runner);
        session_.console.startProgress();
        CollectorOptions options{
            .paths = options_.paths,
            .exactness = options_.isExact ? Exactness::exact : Exactness::quick,
            .jobs = WorkLimits::kAsChosen,
            .makesPosters = options_.format == "html" && !options_.leavesPostersOut,
            .isCancelled = &session_.isCancelled,
        };
        options.onProgress = [this](std::size_t files, std::size_t clips, const FilePath& file) {
            session_.console.progress(files, clips, file);
        };
        options.onProblem = [this](const std::string& message) { session_.console.say(message); };
        report_ = collectReport(options);
        session_.console.stopProgress();
    }

    void hand() {
        const auto take = [this](std::string_view text) {
            if (session_.isCancelled) return false;
            if (file_) {
                file_->write(text);
                return true;
            }
            session_.output.write(text);
            return session_.output.isGood();
        };
        write(report_, options_.format, take);
        if (session_.isCancelled || !file_) return;
        file_->publish();
        if (isTerminal(STDERR_FILENO)) {
            session_.console.say(fmt::format("{} {} in {}", report_.totals.clips,
                                             report_.totals.clips == 1 ? "clip" : "clips",
                                             shown(options_.output)));
        }
    }

    const ReportOptions& options_;
    Session& session_;
    std::optional<ReportFile> file_;
    Report report_;
};

void refuseContradictions(const ReportOptions& options) {
    if (options.format == "html" && options.output.empty()) {
        throw CLI::ValidationError(
            "-o", "a page needs a name (-o report.html), or -o - for standard output");
    }
}

}  // namespace

void addReportCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<ReportOptions>();
    auto tools = std::make_shared<ToolOptions>();
    CLI::App& command = *program.add_subcommand("report", "Write a camera report");
    command.add_option("PATH", options->paths, "Cards, folders or files")->required();
    command.add_option("-o,--output", options->output, "The file to write; - is standard output")
        ->type_name("FILE");
    command.add_option("-f,--format", options->format, "How it is written")
        ->type_name("html|csv|json")
        ->capture_default_str()
        ->check(CLI::IsMember({"html", "csv", "json"}).description(""));
    command.add_flag("--force", options->replaces, "Replace a file that exists");
    command.add_flag("--no-posters", options->leavesPostersOut, "Leave the pictures out");
    addExactOption(command, options->isExact);
    addJobsOption(command, *tools);
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        refuseContradictions(*options);
        job.tools = *tools;
        job.run = [options](Session& session) { return Reporting(*options, session).run(); };
    });
}

}  // namespace qrx::tool
