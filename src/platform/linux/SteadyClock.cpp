#include "platform/linux/SteadyClock.h"

#include <thread>

namespace qrx::platform {

Clock::Duration SteadyClock::now() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

void SteadyClock::sleepFor(Duration duration) {
    std::this_thread::sleep_for(duration);
}

}  // namespace qrx::platform
