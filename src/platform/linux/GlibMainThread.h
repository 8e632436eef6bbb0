#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/ports/MainThread.h"

namespace qrx::platform {

/// The thread that serves GLib's main loop.
///
/// While serve() runs, work of other threads is handed over to its thread. While it does not, work
/// is done on the thread that asks, one at a time. Work may ask for work of its own: the thread
/// that is at it already goes on at once.
///
/// At any moment one thread at most owns the main-thread work: the one in serve(), or the one that
/// does work of its own. An owner in serve() or waitServing() takes the work of others, too.
class GlibMainThread final : public MainThread {
public:
    /// @param beforeEnd   called by terminate first, e.g. to end the tools under way.
    /// @param endProcess  ends the process; tests replace it. By default the process ends at once
    ///                    with status 0: destructors of statics are not run, for other threads may
    ///                    still be using what they would destroy.
    explicit GlibMainThread(std::function<void()> beforeEnd = {},
                            std::function<void()> endProcess = {});
    ~GlibMainThread() override;
    GlibMainThread(const GlibMainThread&) = delete;
    GlibMainThread& operator=(const GlibMainThread&) = delete;

    [[nodiscard]] bool isCurrent() const override;
    void runAndWait(const std::function<void()>& work) override;
    void waitServing(const std::function<bool()>& isDone) override;
    void wake() override;
    /// Serves the default context until terminate() is called; 0.
    int serve() override;
    void terminate() override;

private:
    class Job;
    struct Loop;

    // All with mutex_ held by `lock`, which is given up while work is done.
    void handOver(const std::shared_ptr<Job>& job);
    void performAsOwner(const std::function<void()>& work, std::unique_lock<std::mutex>& lock);
    void performSome(std::unique_lock<std::mutex>& lock);
    void performTheRest(std::unique_lock<std::mutex>& lock);
    void leaveOwnership();

    std::function<void()> beforeEnd_;
    std::function<void()> endProcess_;
    std::unique_ptr<Loop> loop_;

    std::atomic<std::thread::id> owner_{};  // changed with mutex_ held
    std::mutex mutex_;                      // guards what follows
    bool ownerTakesWork_ = false;
    bool isServing_ = false;
    unsigned callOfLoop_ = 0;  // number of the source that will look at the queue; 0: none
    std::vector<std::shared_ptr<Job>> queue_;
    std::condition_variable ownership_;  // there is no owner any more, or it takes work
    std::condition_variable news_;       // for those in waitServing()
};

}  // namespace qrx::platform
