#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/SystemLog.h"

namespace qrx::test {

/// Keeps what is logged, in order.
class RecordingSystemLog final : public platform::SystemLog {
public:
    void notice(std::string_view text) override {
        const std::scoped_lock lock(mutex_);
        notices_.emplace_back(text);
    }
    void debug(std::string_view text) override {
        const std::scoped_lock lock(mutex_);
        debugs_.emplace_back(text);
    }

    [[nodiscard]] std::vector<std::string> notices() const {
        const std::scoped_lock lock(mutex_);
        return notices_;
    }
    [[nodiscard]] std::vector<std::string> debugs() const {
        const std::scoped_lock lock(mutex_);
        return debugs_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> notices_;
    std::vector<std::string> debugs_;
};

}  // namespace qrx::test
