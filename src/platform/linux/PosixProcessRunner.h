#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <vector>

#include <sys/types.h>

#include "platform/ports/ProcessRunner.h"

namespace qrx::platform {

class ChildPipe;
class SpawnedChild;
struct ChildStreams;

/// What a program may choose about its tools.
struct ToolLimits {
    /// A tool that runs longer is ended; zero means that no tool is ever ended.
    std::chrono::nanoseconds timeLimit{0};
    /// Called on the thread of the run, once the tool has been ended by this limit and reaped; not
    /// when the limit of its own request was less.
    std::function<void(const ProcessRequest&)> onTimeLimit;
    /// Whether the kernel may tell of a child's end by a descriptor (Linux 5.3 and later). Without
    /// it the child is looked at again and again, some milliseconds apart.
    bool watchByDescriptor = true;
};

/// Starts the child of a run. Throws what `run` throws.
using ChildStart = std::function<SpawnedChild(const ChildStreams&)>;

/// Children by posix_spawn, each in a process group of its own: when the child ends, is cancelled
/// or meets its time limit, whatever it left in its group ends with it.
class PosixProcessRunner final : public ProcessRunner {
public:
    explicit PosixProcessRunner(ToolLimits limits = {});

    [[nodiscard]] ProcessResult run(const ProcessRequest& request) override;
    /// The same with a child that comes to life in another way, in a process group of its own.
    [[nodiscard]] ProcessResult run(const ProcessRequest& request, const ChildStart& start);
    /// Its standard output is our own, its standard error too, or /dev/null when the request says
    /// captured.
    void launch(const ProcessRequest& request) override;
    void cancelAll() override;

private:
    class UnderWay;

    void throwIfCancelled();
    /// Whether the child had to be ended after `timeLimit`.
    [[nodiscard]] bool drainUntilExit(const SpawnedChild& child, ChildPipe& output,
                                      ChildPipe* errors, std::chrono::nanoseconds timeLimit) const;

    const ToolLimits limits_;
    std::mutex mutex_;  // guards what follows
    bool cancelled_ = false;
    std::vector<pid_t> underWay_;  // children of run, not yet reaped
};

}  // namespace qrx::platform
