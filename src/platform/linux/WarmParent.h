#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/SpawnedChild.h"
#include "platform/linux/WarmProtocol.h"
#include "platform/ports/ProcessRunner.h"

namespace qrx::platform {

/// How long to wait for a process, and whether anybody still wants to.
struct Patience {
    std::chrono::nanoseconds limit{0};
    std::function<bool()> isGivenUp;
};

/// A tool that has been started and stopped before its main function, and starts children from
/// there. One thread at a time; may be handed from one to another.
///
/// The children are children of this process, as if it had started them itself: they live on when
/// the warm parent goes. They end when the thread that made the WarmParent does.
class WarmParent {
public:
    /// Starts the tool with `library` preloaded. Throws std::system_error when it cannot.
    WarmParent(const std::string& program, const std::string& library);

    /// Waits until the tool has loaded its libraries. Says what went wrong, or nothing.
    [[nodiscard]] std::optional<std::string> whyNotReady(const Patience& patience);

    /// A child that runs the tool's main with the request's arguments, in this process's working
    /// folder. Nothing when none could be started: then main has not begun, and never will.
    [[nodiscard]] std::optional<SpawnedChild> start(const ProcessRequest& request,
                                                    const ChildStreams& streams,
                                                    const Patience& patience);

    /// False once something went wrong between the two.
    [[nodiscard]] bool isUsable() const { return socket_.isOpen(); }
    [[nodiscard]] pid_t pid() const { return process_.pid(); }

private:
    struct Reports;

    struct Ends {
        FileDescriptor ours;
        FileDescriptor theirs;
        FileDescriptor wrote;  ///< what the tool writes before its main
    };
    [[nodiscard]] static Ends makeEnds();
    WarmParent(const std::string& program, const std::string& library, Ends ends);

    [[nodiscard]] std::optional<warm::Answer> nextAnswer(const Patience& patience) const;
    [[nodiscard]] Reports reportsOfOneStart(const Patience& patience) const;
    void end();

    FileDescriptor socket_;
    FileDescriptor wrote_;
    SpawnedChild process_;
};

}  // namespace qrx::platform
