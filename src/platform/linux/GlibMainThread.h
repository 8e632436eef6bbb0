#pragma once

#include <atomic>
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
    /// Serves the default context until terminate() is called; 0.
    int serve() override;
    void terminate() override;

private:
    class Job;
    struct Loop;

    [[nodiscard]] bool handedOver(const std::shared_ptr<Job>& job);
    [[nodiscard]] bool performedHere(Job& job);
    void performHandedOver();

    std::function<void()> beforeEnd_;
    std::function<void()> endProcess_;
    std::unique_ptr<Loop> loop_;

    std::mutex workMutex_;                    // held while work is done outside the loop
    std::atomic<std::thread::id> worker_{};   // who does that work
    std::atomic<std::thread::id> servant_{};  // who is in serve()
    std::mutex queueMutex_;                   // guards what follows
    bool serving_ = false;
    std::vector<std::shared_ptr<Job>> queue_;
};

}  // namespace qrx::platform
