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

    /// Waits until `isDone` answers YES. Where the calling thread is the one that does main-thread
    /// work, it does meanwhile what others hand over to it, so it may wait for others who ask for
    /// such work; nothing else of the main loop is served.
    ///
    /// @param isDone  is asked on the calling thread, first at once and then after each wake(). It
    ///                must not throw, nor call this object: a lock is held.
    virtual void waitServing(const std::function<bool()>& isDone) = 0;
    /// Makes every waitServing ask again. To be called after the change that it waits for, without
    /// a lock that its `isDone` takes.
    virtual void wake() = 0;

    /// Serves the main loop until `terminate` is called; gives the exit status.
    virtual int serve() = 0;

    /// Ends the process with status 0, from whichever thread asks.
    virtual void terminate() = 0;
};

}  // namespace qrx::platform
