#include "foundation/OrderedWork.h"
#include "qrx/Commands.h"

namespace qrx::tool {

std::string whyNoDuration(const std::string& text) {
    constexpr double kMostSeconds = 1e6;
    double seconds = -1;
    const bool isNumber = CLI::detail::lexical_cast(text, seconds);
    if (isNumber && seconds >= 0 && seconds <= kMostSeconds) return {};
    return text + " is no number of seconds from 0 to 1000000";
}

namespace {

std::string whyNoJobs(const std::string& text) {
    if (jobsNamed(text)) return {};
    return text + " is no number of files from 1 to " + std::to_string(WorkLimits::kMostJobs) +
           " (QRX_JOBS counts where --jobs is not given)";
}

}  // namespace

void addToolOptions(CLI::App& command, ToolOptions& options) {
    command
        .add_option("--ffmpeg", options.ffmpegPath,
                    "The ffmpeg to use, in place of the installed one")
        ->type_name("PATH")
        ->envname("QRX_FFMPEG");
    command
        .add_option("--tool-limit", options.secondsAtMost,
                    "End ffmpeg after so long on one file; 0: never")
        ->type_name("SECONDS")
        ->capture_default_str()
        ->check(CLI::Validator(whyNoDuration, ""));
    command
        .add_flag("--plain-tool", options.isPlain,
                  "Load ffmpeg's libraries anew for every file, as if it could not be kept warm")
        ->envname("QRX_PLAIN_TOOL");
}

void addJobsOption(CLI::App& command, ToolOptions& options) {
    command
        .add_option("-j,--jobs", options.jobs,
                    "Files to examine at a time, from 1 to 64; as many as cores without it")
        ->type_name("NUMBER")
        ->envname("QRX_JOBS")
        ->check(CLI::Validator(whyNoJobs, ""));
}

void addExactOption(CLI::App& command, bool& isExact) {
    command.add_flag("--exact", isExact,
                     "Run ffmpeg on pictures, texts and the like, too, by their extension");
}

}  // namespace qrx::tool
