#pragma once

#include "platform/ports/Clock.h"

namespace qrx::platform {

/// The system's monotonic clock.
class SteadyClock final : public Clock {
public:
    [[nodiscard]] Duration now() const override;
    void sleepFor(Duration duration) override;
};

}  // namespace qrx::platform
