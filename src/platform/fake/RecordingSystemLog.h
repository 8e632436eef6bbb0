#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/ports/SystemLog.h"

namespace qrx::platform {

/// Keeps what was logged, in order. May be used from several threads.
class RecordingSystemLog final : public SystemLog {
public:
    void notice(std::string_view text) override {
        const std::lock_guard lock(mutex_);
        notices_.emplace_back(text);
    }
    void debug(std::string_view text) override {
        const std::lock_guard lock(mutex_);
        debugTexts_.emplace_back(text);
    }

    [[nodiscard]] std::vector<std::string> notices() const {
        const std::lock_guard lock(mutex_);
        return notices_;
    }
    [[nodiscard]] std::vector<std::string> debugTexts() const {
        const std::lock_guard lock(mutex_);
        return debugTexts_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> notices_;
    std::vector<std::string> debugTexts_;
};

}  // namespace qrx::platform
