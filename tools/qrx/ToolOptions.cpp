#include "qrx/Commands.h"

namespace qrx::tool {

void addToolOptions(CLI::App& command, ToolOptions& options) {
    constexpr double kMostSeconds = 1e6;
    command
        .add_option("--ffmpeg", options.ffmpegPath,
                    "The ffmpeg tool to use, even if nothing is there. Without it the one that is "
                    "installed is used.")
        ->type_name("PATH")
        ->envname("QRX_FFMPEG");
    command
        .add_option("--tool-limit", options.secondsAtMost,
                    "End ffmpeg when it runs longer on one file, and name the file; 0: never.")
        ->type_name("SECONDS")
        ->capture_default_str()
        ->check(CLI::Range(0.0, kMostSeconds));
}

}  // namespace qrx::tool
