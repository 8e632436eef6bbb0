#include "qrx/Commands.h"

namespace qrx::tool {

std::string whyNoDuration(const std::string& text) {
    constexpr double kMostSeconds = 1e6;
    double seconds = -1;
    const bool isNumber = CLI::detail::lexical_cast(text, seconds);
    if (isNumber && seconds >= 0 && seconds <= kMostSeconds) return {};
    return text + " is no number of seconds from 0 to 1000000";
}

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

}  // namespace qrx::tool
