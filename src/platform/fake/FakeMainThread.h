#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <utility>

#include "platform/ports/MainThread.h"

namespace qrx::platform {

/// Does handed-over work on the caller, one at a time, and counts it.
class FakeMainThread final : public MainThread {
public:
    [[nodiscard]] bool isCurrent() const override { return insideWork(); }

    void runAndWait(const std::function<void()>& work) override {
        const std::lock_guard lock(mutex_);
        ++timesRun;
        const bool before = std::exchange(insideWork(), true);
        struct Restore {
            bool before;
            ~Restore() { insideWork() = before; }
        } const restore{before};
        work();
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

    std::recursive_mutex mutex_;
};

}  // namespace qrx::platform
