#pragma once

#include <functional>
#include <thread>
#include <vector>

namespace qrx::test {

/// Several threads that do the same at once; waited for at the end at the latest.
class Callers {
public:
    /// @param work  gets the number of its thread, from 0.
    Callers(int count, const std::function<void(int)>& work) {
        threads_.reserve(static_cast<std::size_t>(count));
        for (int caller = 0; caller < count; ++caller) {
            threads_.emplace_back(work, caller);
        }
    }
    ~Callers() { wait(); }
    Callers(const Callers&) = delete;
    Callers& operator=(const Callers&) = delete;

    void wait() {
        for (std::thread& thread : threads_) {
            if (thread.joinable()) thread.join();
        }
    }

private:
    std::vector<std::thread> threads_;
};

}  // namespace qrx::test
