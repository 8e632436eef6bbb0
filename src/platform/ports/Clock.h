#pragma once

#include <chrono>

namespace qrx::platform {

class Clock {
public:
    using Duration = std::chrono::nanoseconds;

    virtual ~Clock() = default;
    /// Time since an arbitrary start; never goes back.
    [[nodiscard]] virtual Duration now() const = 0;
    virtual void sleepFor(Duration duration) = 0;
};

}  // namespace qrx::platform
