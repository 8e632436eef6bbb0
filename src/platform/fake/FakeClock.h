#pragma once

#include <mutex>
#include <vector>

#include "platform/ports/Clock.h"

namespace qrx::platform {

/// Time passes only when somebody sleeps or the test says so. May be used from several threads.
class FakeClock final : public Clock {
public:
    [[nodiscard]] Duration now() const override {
        const std::lock_guard lock(mutex_);
        return now_;
    }
    /// Returns at once, that much later.
    void sleepFor(Duration duration) override {
        const std::lock_guard lock(mutex_);
        sleeps_.push_back(duration);
        now_ += duration;
    }

    void advance(Duration duration) {
        const std::lock_guard lock(mutex_);
        now_ += duration;
    }
    [[nodiscard]] std::vector<Duration> sleeps() const {
        const std::lock_guard lock(mutex_);
        return sleeps_;
    }

private:
    mutable std::mutex mutex_;
    Duration now_{0};
    std::vector<Duration> sleeps_;
};

}  // namespace qrx::platform
