#pragma once

#include <chrono>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace qrx::platform {

/// What becomes of a child's standard error.
enum class StandardError {
    inherited,  ///< goes where our own goes
    captured,   ///< kept in ProcessResult::standardError
};

/// One program to be run to its end. No shell takes part.
struct ProcessRequest {
    std::string program;                 ///< path of the program; no search along PATH
    std::vector<std::string> arguments;  ///< each reaches the program as one argument, unchanged
    StandardError standardError = StandardError::inherited;
    /// The child is ended after this, also where the runner itself has a longer limit or none;
    /// zero: the runner's limit alone.
    std::chrono::nanoseconds timeLimit{0};
};

struct ProcessResult {
    std::string standardOutput;     ///< at most kKeptBytesPerPipe; the rest was read and dropped
    std::string standardError;      ///< likewise; empty unless captured
    int exitStatus = 0;             ///< 0 to 255; 128 + signal number when a signal ended the child
    bool endedByTimeLimit = false;  ///< the request's or the runner's, whichever is less
};

/// Runs one program to its end, without a shell.
///
/// Both pipes are drained while the child runs, so a report of any size cannot block it; the child
/// is always reaped; it inherits the three standard streams and no other descriptor.
class ProcessRunner {
public:
    /// Bytes kept of each pipe (16 MiB).
    static constexpr std::size_t kKeptBytesPerPipe = std::size_t{16} << 20U;

    virtual ~ProcessRunner() = default;

    /// @return what the child wrote and how it ended.
    /// Throws std::system_error when the program cannot be started, and RunCancelled when
    /// `cancelAll` was called, or the thread's RunsUntil stopped, before or while it ran.
    [[nodiscard]] virtual ProcessResult run(const ProcessRequest& request) = 0;

    /// Starts a program that lives on by itself: never waited for by the caller, but reaped.
    /// Throws std::system_error when it cannot be started.
    virtual void launch(const ProcessRequest& request) = 0;

    /// Ends every child of `run` that is under way, and makes every later `run` throw
    /// RunCancelled. May be called from any thread.
    virtual void cancelAll() = 0;
};

/// Thrown by ProcessRunner::run after `cancelAll`, and when the calling thread's RunsUntil stops.
struct RunCancelled {};

/// While it lives, runs of this thread belong to one request: once `token` is stopped, the tool
/// under way is ended and every later run throws RunCancelled. Work that a request hands to other
/// threads needs one there, too. Runs of threads without one go on.
class RunsUntil {
public:
    explicit RunsUntil(std::stop_token token)
        : before_(std::exchange(inForce(), std::move(token))) {}
    ~RunsUntil() { inForce() = std::move(before_); }
    RunsUntil(const RunsUntil&) = delete;
    RunsUntil& operator=(const RunsUntil&) = delete;

    /// Of the calling thread; one that is never stopped where there is none.
    [[nodiscard]] static std::stop_token current() { return inForce(); }

private:
    static std::stop_token& inForce() {
        thread_local std::stop_token token;
        return token;
    }

    std::stop_token before_;
};

}  // namespace qrx::platform
