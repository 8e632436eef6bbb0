#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

#include "platform/ports/MainThread.h"

namespace qrx::platform {

/// Does handed-over work on the caller, one at a time, and counts it.
class FakeMainThread final : public MainThread {
public:
    [[nodiscard]] bool isCurrent() const override { return insideWork(); }

    void runAndWait(const std::function<void()>& work) override {
        ++timesRun;
        if (insideWork()) {
            work();
            return;
        }
        const std::lock_guard oneAtATime(work_);
        insideWork() = true;
        struct Leave {
            ~Leave() { insideWork() = false; }
        } const leave;
        work();
    }

    /// Whoever waits inside work lets others do theirs meanwhile.
    void waitServing(const std::function<bool()>& isDone) override {
        const bool waitsInsideWork = insideWork();
        if (waitsInsideWork) work_.unlock();
        {
            std::unique_lock lock(waiting_);
            news_.wait(lock, isDone);
        }
        if (waitsInsideWork) work_.lock();
    }
    void wake() override {
        { const std::lock_guard lock(waiting_); }
        news_.notify_all();
    }

    /// Gives back at once.
    int serve() override {
        ++timesServed;
        return 0;
    }
    /// The process goes on.
    void terminate() override { ++timesTerminated; }

    std::atomic<int> timesRun = 0;
    std::atomic<int> timesServed = 0;
    std::atomic<int> timesTerminated = 0;

private:
    static bool& insideWork() {
        thread_local bool inside = false;
        return inside;
    }

    std::mutex work_;
    std::mutex waiting_;
    std::condition_variable news_;
};

}  // namespace qrx::platform
