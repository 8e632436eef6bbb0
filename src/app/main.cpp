// The service: composes the library, the services of this system and the controller that a host
// talks to. Argument 1 is the connection name.

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "app/Composition.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/OrderedWork.h"
#include "platform/linux/PlatformServices.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

/// A file opened later must never take the number of a standard stream that was closed at the
/// start, and no tool may read what the host reads: standard input is /dev/null in any case.
void prepareStandardStreams() {
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (int stream = STDIN_FILENO; nothing >= 0 && stream <= STDERR_FILENO; ++stream) {
        const bool isClosed = ::fcntl(stream, F_GETFD) < 0 && errno == EBADF;
        const bool isTaken = stream == nothing;  // it was closed, and open() took its number
        if (isTaken) ::fcntl(stream, F_SETFD, 0);
        if (!isTaken && (stream == STDIN_FILENO || isClosed)) ::dup2(nothing, stream);
    }
    if (nothing > STDERR_FILENO) ::close(nothing);
}

/// The signals that ask for the end, held back in every thread.
sigset_t holdBackEndSignals() {
    sigset_t ends;
    ::sigemptyset(&ends);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        ::sigaddset(&ends, number);
    }
    ::pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    std::signal(SIGPIPE, SIG_IGN);  // a reader that leaves is seen as a failing write
    return ends;
}

/// Ends the process, and the tools under way, from a thread of its own: the main thread may be
/// busy.
void endOnSignal(const sigset_t& ends) {
    std::thread([ends] {
        int number = 0;
        while (::sigwait(&ends, &number) != 0) {
        }
        platform::mainThread().terminate();
    }).detach();
}

/// The folder "Contents/Resources" of the bundle whose "Contents/MacOS" holds the program.
std::string resourceFolder() {
    std::error_code unknown;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown);
    return (program.parent_path().parent_path() / "Resources").string();
}

void chooseFfmpeg() {
    if (const char* const chosen = std::getenv("QRX_FFMPEG")) {
        platform::services().ffmpegPath = chosen;
    }
}

/// Whether the environment asks for tools that are started in full every time.
bool asksForPlainTool() {
    const char* const chosen = std::getenv("QRX_PLAIN_TOOL");
    return chosen != nullptr && std::string_view(chosen) == "1";
}

void chooseJobs() {
    const char* const chosen = std::getenv("QRX_JOBS");
    if (chosen == nullptr || *chosen == '\0') return;
    if (const auto jobs = jobsNamed(chosen)) {
        platform::services().jobs = *jobs;
    } else {
        platform::systemLog().notice(std::string("QRX_JOBS is no number from 1 to ") +
                                     std::to_string(WorkLimits::kMostJobs) + ": " + chosen);
    }
}

/// Several requests with many workers each, every one running a tool, need more descriptors than
/// most systems allow at first.
void allowManyDescriptors() {
    constexpr rlim_t kEnough = 16384;
    struct rlimit limit {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= kEnough) return;
    limit.rlim_cur = std::min(limit.rlim_max, kEnough);
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

int serve(int argc, char** argv) {
    prepareStandardStreams();
    const sigset_t ends = holdBackEndSignals();
    allowManyDescriptors();
    chooseFfmpeg();
    platform::services().resourceFolder = resourceFolder();
    platform::services().arguments.assign(argv, argv + argc);
    platform::PlatformOptions options;
    options.usesPlainTool = asksForPlainTool();
    platform::installPlatformServices(options);
    chooseJobs();
    endOnSignal(ends);
    const auto application = composeApplication();
    return platform::mainThread().serve();
}

}  // namespace

}  // namespace qrx

int main(int argc, char** argv) {
    try {
        return qrx::serve(argc, argv);
    } catch (const std::exception& fault) {
        qrx::logFault("QRXHDFileMatcher", fault.what());
        return EXIT_FAILURE;
    }
}
