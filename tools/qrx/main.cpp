// The command line: composes the library, the services of this system and one command.

#include <atomic>
#include <cerrno>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstring>
#include <exception>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <fmt/core.h>
#include <unistd.h>

#include "platform/linux/PlatformServices.h"
#include "platform/ports/Services.h"
#include "qrx/Commands.h"
#include "qrx/ResourceFolder.h"
#include "qrx/ShownText.h"
#include "qrx/ToolReports.h"

namespace qrx::tool {

namespace {

constexpr const char* kDescription =
    "Tells which files on camera cards and in folders are clips, and of which card layout.";

constexpr const char* kFooter = R"(
Examples:
  qrx scan /media/me/CARD
  qrx explain clip.mov
  qrx mkcard all /tmp/cards
  qrx help scan)";

/// A file opened later must never take the number of a standard stream that was closed at the
/// start. Each is opened for the wrong direction, so that using it fails as before.
void fillStandardStreams() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF) continue;
        (void)::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

/// Makes /dev/null the standard input, which every tool inherits: none may wait for a key or eat
/// the names that are read from it. Gives what standard input was.
int detachStandardInput() {
    constexpr int kAboveStandardStreams = 3;
    const int original = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, kAboveStandardStreams);
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::dup2(nothing, STDIN_FILENO);
    ::close(nothing);
    return original;
}

void prepareProcess() {
    fillStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is seen as a failing write
    // Which characters print, and how wide. Fixed, so that output depends on nobody's settings.
    std::setlocale(LC_CTYPE, "C.UTF-8");
}

/// The parser takes "[a,b]" for a list of two. Such a name is always relative, so it can be said
/// otherwise.
std::vector<std::string> argumentsFrom(int argc, char** argv) {
    std::vector<std::string> arguments;
    for (int i = argc - 1; i > 0; --i) {  // the parser takes them from the back
        const std::string_view argument = argv[i];
        arguments.push_back((argument.starts_with('[') ? "./" : "") + std::string(argument));
    }
    return arguments;
}

void installServices(const ToolOptions& tools, Console& console) {
    platform::PlatformOptions options;
    options.toolTimeLimit = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::duration<double>(tools.secondsAtMost));
    options.onToolTimeLimit = [&console, seconds = tools.secondsAtMost](const auto& request) {
        console.say(timeLimitMessage(request, seconds));
    };
    options.usesPlainTool = tools.isPlain;
    platform::services().ffmpegPath = tools.ffmpegPath;
    platform::services().jobs = tools.jobs;
    platform::services().resourceFolder = resourceFolder();
    platform::installPlatformServices(options);
}

/// What the exit status is when the output could not be written. A reader who has seen enough and
/// closed the pipe is told nothing.
int finished(Output& output, Console& console, int status) {
    const int error = output.finish();
    if (error == 0) return status;
    if (error != EPIPE) console.say(fmt::format("cannot write: {}", std::strerror(error)));
    return kTrouble;
}

int runJob(const Job& job) {
    Output output(STDOUT_FILENO);
    Console console(STDERR_FILENO);
    std::atomic<bool> isCancelled = false;
    Interruption interruption;
    installServices(job.tools, console);
    interruption.start([&isCancelled, runner = platform::services().processRunner] {
        isCancelled = true;
        runner->cancelAll();
    });
    Session session{.output = output,
                    .console = console,
                    .interruption = interruption,
                    .isCancelled = isCancelled,
                    .originalInput = detachStandardInput()};
    const int status = job.run(session);
    if (interruption.hasCome()) return interruption.exitStatus();
    return finished(output, console, status);
}

std::string whatIsWrong(const CLI::App& program, const CLI::ParseError& end) {
    const std::vector<std::string> unknown = program.remaining();
    if (program.get_subcommands().empty() && !unknown.empty()) {
        return "there is no command " + shown(unknown.front());
    }
    return shown(end.what());
}

/// Help and version go to standard output; what is wrong with the command line to standard error.
int endOfParsing(const CLI::App& program, const CLI::ParseError& end) {
    Console console(STDERR_FILENO);
    if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        std::ostringstream text;
        (void)program.exit(end, text, text);
        Output output(STDOUT_FILENO);
        output.write(text.str());
        return finished(output, console, kDone);
    }
    const auto chosen = program.get_subcommands();
    const std::string command = chosen.empty() ? "" : " " + chosen.front()->get_name();
    console.say(whatIsWrong(program, end));
    console.say("see qrx help" + command);
    return kUsage;
}

int run(int argc, char** argv) {
    Job job;
    CLI::App program(kDescription, "qrx");
    program.set_version_flag("--version", "qrx " QRX_VERSION);
    program.footer(kFooter);
    program.require_subcommand(1);
    addScanCommand(program, job);
    addExplainCommand(program, job);
    addMkcardCommand(program, job);
    addDrivesCommand(program, job);
    addInfoCommand(program, job);
    addMetadataCommand(program, job);
    addPosterCommand(program, job);
    addSeriesCommand(program, job);
    addCallCommand(program, job);
    addOrderCommand(program, job);
    addResetCommand(program, job);
    addReportCommand(program, job);
    addHelpCommand(program, job);
    try {
        program.parse(argumentsFrom(argc, argv));
    } catch (const CLI::ParseError& end) {
        return endOfParsing(program, end);
    }
    return runJob(job);
}

}  // namespace

}  // namespace qrx::tool

int main(int argc, char** argv) {
    using namespace qrx::tool;
    prepareProcess();
    try {
        return run(argc, argv);
    } catch (const std::exception& fault) {
        Console(STDERR_FILENO).say(shown(fault.what()));
        return kTrouble;
    }
}
