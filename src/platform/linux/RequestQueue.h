#pragma once

#include <deque>
#include <functional>
#include <utility>

namespace qrx::platform {

/// One request at a time, in order of arrival. While a request is served the main loop may turn (it
/// waits for work that only this thread may do), and further requests then arrive: they wait. For
/// one thread.
class RequestQueue {
public:
    /// Serves `request` now, or after those that are before it. A request raises no fault.
    void add(std::function<void()> request) {
        waiting_.push_back(std::move(request));
        if (isServing_) return;
        isServing_ = true;
        while (!waiting_.empty()) {
            const std::function<void()> next = std::move(waiting_.front());
            waiting_.pop_front();
            next();
        }
        isServing_ = false;
    }

private:
    std::deque<std::function<void()>> waiting_;
    bool isServing_ = false;
};

}  // namespace qrx::platform
