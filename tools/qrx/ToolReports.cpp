#include "qrx/ToolReports.h"

#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

#include <fmt/core.h>

#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "platform/ports/Services.h"
#include "qrx/ShownText.h"
#include "readers/QRXFFmpegObject.h"

namespace qrx::tool {

namespace {

/// The file that the tool was to describe; the tool itself where it was to do something else.
const std::string& fileOf(const platform::ProcessRequest& request) {
    const bool describes = request.arguments.size() == 2 && request.arguments.front() == "-i";
    return describes ? request.arguments.back() : request.program;
}

std::string messageFor(const platform::ProcessRequest& request, const std::string& what) {
    return fmt::format("{}: {} {}", shown(fileOf(request)),
                       shown(lastPathComponent(request.program)), what);
}

/// Number of the signal that ended the tool; 0 when it ended by itself.
int endingSignal(const platform::ProcessResult& result) {
    constexpr int kSignalBase = 128;
    const int number = result.exitStatus - kSignalBase;
    return number > 0 && number < NSIG ? number : 0;
}

}  // namespace

ToolReports::ToolReports(std::shared_ptr<platform::ProcessRunner> runner, Say say)
    : runner_(std::move(runner)), say_(std::move(say)) {}

platform::ProcessResult ToolReports::run(const platform::ProcessRequest& request) {
    try {
        platform::ProcessResult result = runner_->run(request);
        const int signal = endingSignal(result);
        if (signal != 0 && !result.endedByTimeLimit) {
            say_(messageFor(request, fmt::format("crashed ({})", ::strsignal(signal))));
        }
        return result;
    } catch (const std::system_error& fault) {
        say_(messageFor(request, "cannot be run: " + fault.code().message()));
        throw;
    }
}

void reportToolProblems(Console& console) {
    auto& inForce = platform::services().processRunner;
    inForce = std::make_shared<ToolReports>(
        inForce, [&console](const std::string& message) { console.say(message); });
    const FilePath tool = QRXFFmpegObject().pathOfToolToRun();
    if (!QRXFileSystemUtility::fileSystemUtility().terminalCommandPathIsAvailable(tool)) {
        console.say(
            fmt::format("{}: no ffmpeg there; movies that only ffmpeg can judge are not recognised",
                        shown(tool)));
    }
}

std::string timeLimitMessage(const platform::ProcessRequest& request, double seconds) {
    return messageFor(request, fmt::format("took longer than {:g} {} and was ended", seconds,
                                           seconds == 1 ? "second" : "seconds"));
}

}  // namespace qrx::tool
