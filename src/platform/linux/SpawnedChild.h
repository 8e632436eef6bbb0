#pragma once

#include <vector>

#include <sys/types.h>

#include "platform/linux/FileDescriptor.h"
#include "platform/ports/ProcessRunner.h"

namespace qrx::platform {

/// Where a child's streams go; -1 is where our own goes.
struct ChildStreams {
    int standardInput = -1;
    int standardOutput = -1;
    int standardError = -1;
    int socket = -1;  ///< becomes descriptor 3; -1: the child has no such descriptor
};

/// The variables that a child gets, as posix_spawn takes them; they belong to our own environment.
[[nodiscard]] std::vector<char*> childEnvironment();

/// Whom a child belongs to.
enum class ChildGroup {
    ownGroup,    ///< its own process group: can be ended with its own children
    ownSession,  ///< its own session: lives on when our terminal goes
};

/// One child process, from its start to its reaping.
///
/// The child has the default signal mask and handlers, the three standard streams and no other
/// descriptor, whoever opened it, and none of the variables that change how ffmpeg reports.
class SpawnedChild {
public:
    /// Throws std::system_error when the program cannot be started.
    SpawnedChild(const ProcessRequest& request, const ChildStreams& streams, ChildGroup group,
                 const std::vector<char*>& environment = childEnvironment());
    /// A child of this process that was started otherwise, in a group of its own.
    [[nodiscard]] static SpawnedChild adopted(pid_t pid) { return SpawnedChild(pid); }
    /// Ends and reaps a child that was not reaped.
    ~SpawnedChild();
    SpawnedChild(SpawnedChild&& other) noexcept;
    SpawnedChild& operator=(SpawnedChild&&) = delete;
    SpawnedChild(const SpawnedChild&) = delete;
    SpawnedChild& operator=(const SpawnedChild&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    /// Whether it has ended. It is not reaped by this, so its number stays its own.
    [[nodiscard]] bool hasExited() const;
    /// Ends it, and every child of its own that stayed in its group.
    void killGroup() const;
    /// Waits for the end; 0 to 255, 128 + signal number when a signal ended it.
    int reap();

private:
    explicit SpawnedChild(pid_t pid) : pid_(pid) {}

    pid_t pid_ = -1;
};

/// A descriptor that becomes readable when the process ends; closed where the kernel has none.
[[nodiscard]] FileDescriptor exitDescriptor(pid_t pid);

}  // namespace qrx::platform
