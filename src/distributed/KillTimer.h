#pragma once

#include <atomic>
#include <functional>
#include <utility>

#include "platform/ports/Clock.h"

namespace qrx {

/// A timer that fires once. It belongs to no run loop: nothing happens at its time unless somebody
/// fires it.
class KillTimer {
public:
    using Duration = platform::Clock::Duration;

    /// @param firstFiring  a time of the clock.
    KillTimer(Duration firstFiring, Duration interval, std::function<void()> action)
        : firstFiring_(firstFiring), interval_(interval), action_(std::move(action)) {}

    [[nodiscard]] Duration firstFiring() const { return firstFiring_; }
    [[nodiscard]] Duration interval() const { return interval_; }
    [[nodiscard]] bool repeats() const { return false; }
    [[nodiscard]] bool isValid() const { return valid_; }

    void invalidate() { valid_ = false; }

    /// Runs the action on the calling thread, whatever the time is. Nothing when it is not valid;
    /// not valid any more once the action returns.
    void fire() {
        if (!valid_) return;
        action_();
        invalidate();
    }

private:
    Duration firstFiring_;
    Duration interval_;
    std::function<void()> action_;
    std::atomic<bool> valid_ = true;
};

}  // namespace qrx
