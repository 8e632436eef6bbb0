#include "platform/linux/PosixProcessRunner.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>

#include "platform/linux/ChildPipe.h"
#include "platform/linux/SpawnedChild.h"
#include "platform/ports/SignalsBlocked.h"

namespace qrx::platform {

namespace {

using SteadyTime = std::chrono::steady_clock::time_point;
using std::chrono::milliseconds;

constexpr milliseconds kLookAgain{5};  // where no descriptor tells of the end
/// A report comes in dozens of small pieces, most within this time. A pipe holds 64 KiB of them;
/// waking up for each would cost the tool a tenth of its processor time.
constexpr milliseconds kMorePieces{2};
constexpr int kForEver = -1;

/// Milliseconds that poll may wait, rounded up so that it never wakes just before `until`.
int pollTimeout(std::optional<SteadyTime> until, bool mustLookAgain) {
    if (!until) return mustLookAgain ? static_cast<int>(kLookAgain.count()) : kForEver;
    const auto left = std::chrono::ceil<milliseconds>(*until - std::chrono::steady_clock::now());
    const milliseconds most = mustLookAgain ? kLookAgain : milliseconds{60'000};
    return static_cast<int>(std::clamp(left, milliseconds{0}, most).count());
}

/// When a child that starts now meets `limit`; nothing when there is none.
std::optional<SteadyTime> endOf(std::chrono::nanoseconds limit) {
    if (limit.count() <= 0) return std::nullopt;
    const std::chrono::nanoseconds longest = std::chrono::hours{24 * 365};  // the sum cannot wrap
    return std::chrono::steady_clock::now() + std::min(limit, longest);
}

/// Whether `limit` is one, and less than `other` if that is one.
bool isShorter(std::chrono::nanoseconds limit, std::chrono::nanoseconds other) {
    return limit.count() > 0 && (other.count() <= 0 || limit < other);
}

}  // namespace

/// Keeps a child in the list that cancelAll ends. It leaves the list before it is reaped, since
/// after that its number may belong to somebody else.
class PosixProcessRunner::UnderWay {
public:
    UnderWay(PosixProcessRunner& runner, pid_t pid) : runner_(runner), pid_(pid) {
        const std::lock_guard lock(runner_.mutex_);
        runner_.underWay_.push_back(pid_);
        if (runner_.cancelled_) ::kill(-pid_, SIGKILL);
    }
    ~UnderWay() {
        const std::lock_guard lock(runner_.mutex_);
        runner_.underWay_.erase(
            std::find(runner_.underWay_.begin(), runner_.underWay_.end(), pid_));
    }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

private:
    PosixProcessRunner& runner_;
    pid_t pid_;
};

PosixProcessRunner::PosixProcessRunner(ToolLimits limits) : limits_(std::move(limits)) {}

ProcessResult PosixProcessRunner::run(const ProcessRequest& request) {
    return run(request, [&](const ChildStreams& streams) {
        return SpawnedChild(request, streams, ChildGroup::ownGroup);
    });
}

ProcessResult PosixProcessRunner::run(const ProcessRequest& request, const ChildStart& start) {
    throwIfCancelled();
    ChildPipe output(kKeptBytesPerPipe);
    std::optional<ChildPipe> errors;
    ChildStreams streams;
    streams.standardOutput = output.writeEnd();
    if (request.standardError == StandardError::captured) {
        streams.standardError = errors.emplace(kKeptBytesPerPipe).writeEnd();
    }

    const bool hasShorterLimit = isShorter(request.timeLimit, limits_.timeLimit);
    const auto timeLimit = hasShorterLimit ? request.timeLimit : limits_.timeLimit;
    SpawnedChild child = start(streams);
    ProcessResult result;
    {
        const UnderWay registered(*this, child.pid());
        const std::stop_callback endWithItsRequest(RunsUntil::current(),
                                                   [&child] { child.killGroup(); });
        output.closeWriteEnd();
        if (errors) errors->closeWriteEnd();
        result.endedByTimeLimit =
            drainUntilExit(child, output, errors ? &*errors : nullptr, timeLimit);
        child.killGroup();
    }
    result.exitStatus = child.reap();
    throwIfCancelled();
    result.standardOutput = output.takeText();
    if (errors) result.standardError = errors->takeText();
    if (result.endedByTimeLimit && !hasShorterLimit && limits_.onTimeLimit) {
        limits_.onTimeLimit(request);
    }
    return result;
}

bool PosixProcessRunner::drainUntilExit(const SpawnedChild& child, ChildPipe& output,
                                        ChildPipe* errors,
                                        std::chrono::nanoseconds timeLimit) const {
    const FileDescriptor ended =
        limits_.watchByDescriptor ? exitDescriptor(child.pid()) : FileDescriptor();
    std::optional<SteadyTime> endBy = endOf(timeLimit);
    bool endedByTimeLimit = false;
    bool exited = false;
    bool isWriting = false;
    while (!exited) {
        const bool awaitsPieces = isWriting && ended.isOpen();
        std::array<pollfd, 3> watched{pollfd{ended.get(), POLLIN, 0},
                                      pollfd{output.readEnd(), POLLIN, 0},
                                      pollfd{errors ? errors->readEnd() : -1, POLLIN, 0}};
        int timeout = pollTimeout(endBy, !ended.isOpen());
        if (awaitsPieces) {
            const int most = static_cast<int>(kMorePieces.count());
            timeout = timeout == kForEver ? most : std::min(timeout, most);
        }
        const int ready = ::poll(watched.data(), awaitsPieces ? 1 : watched.size(), timeout);
        if (ready < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "poll");
        }
        exited = ended.isOpen() ? ready > 0 && watched[0].revents != 0 : child.hasExited();
        if (exited) break;
        isWriting = ready > 0 && (watched[1].revents | watched[2].revents) != 0;
        if (ready > 0 && watched[1].revents != 0) output.readSome();
        if (ready > 0 && watched[2].revents != 0) errors->readSome();
        if (endBy && std::chrono::steady_clock::now() >= *endBy) {
            child.killGroup();
            endedByTimeLimit = true;
            endBy.reset();
        }
    }
    output.readWhatIsThere();
    if (errors != nullptr) errors->readWhatIsThere();
    return endedByTimeLimit;
}

void PosixProcessRunner::launch(const ProcessRequest& request) {
    ChildStreams streams;
    FileDescriptor nowhere;
    if (request.standardError == StandardError::captured) {
        nowhere = FileDescriptor(::open("/dev/null", O_WRONLY | O_CLOEXEC));
        streams.standardError = nowhere.get();
    }
    SpawnedChild child(request, streams, ChildGroup::ownSession);
    const SignalsBlocked blocked;
    std::thread([launched = std::move(child)]() mutable {
        static_cast<void>(launched.reap());
    }).detach();
}

void PosixProcessRunner::cancelAll() {
    const std::lock_guard lock(mutex_);
    cancelled_ = true;
    for (const pid_t child : underWay_) {
        ::kill(-child, SIGKILL);
    }
}

void PosixProcessRunner::throwIfCancelled() {
    if (RunsUntil::current().stop_requested()) throw RunCancelled{};
    const std::lock_guard lock(mutex_);
    if (cancelled_) throw RunCancelled{};
}

}  // namespace qrx::platform
