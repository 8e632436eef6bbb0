#pragma once

#include <functional>

namespace qrx::platform {

/// The one thread on which movie objects are made.
class MainThread {
public:
    virtual ~MainThread() = default;

    /// Whether the calling thread may do main-thread work itself.
    [[nodiscard]] virtual bool isCurrent() const = 0;

    /// Runs `work` on the main thread and waits until it is done; a fault inside it is thrown here.
    /// Where no main loop is running the work is done on the caller, one at a time, so that
    /// nothing can hang.
    virtual void runAndWait(const std::function<void()>& work) = 0;

    /// Serves the main loop until `terminate` is called; gives the exit status.
    virtual int serve() = 0;

    /// Ends the process with status 0, from whichever thread asks.
    virtual void terminate() = 0;
};

}  // namespace qrx::platform
