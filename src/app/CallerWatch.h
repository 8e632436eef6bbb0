#pragma once

#include <atomic>
#include <stop_token>

#include "platform/ports/ProcessRunner.h"

namespace qrx {

/// While it lives, what the calling thread does is done for one caller: when that has gone, the
/// tool under way is ended and the run over the files with it.
class CallerWatch {
public:
    explicit CallerWatch(const std::stop_token& callerGone)
        : isGone_(callerGone.stop_requested()),
          runs_(callerGone),
          listening_(callerGone, Tell{isGone_}) {}
    CallerWatch(const CallerWatch&) = delete;
    CallerWatch& operator=(const CallerWatch&) = delete;

    [[nodiscard]] const std::atomic<bool>& isGone() const { return isGone_; }

private:
    struct Tell {
        std::atomic<bool>& gone;
        void operator()() const { gone = true; }
    };

    std::atomic<bool> isGone_;
    platform::RunsUntil runs_;
    std::stop_callback<Tell> listening_;
};

}  // namespace qrx
