#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/ports/RunningApplications.h"

namespace qrx::platform {

/// Runs what a test says.
class FakeRunningApplications final : public RunningApplications {
public:
    static constexpr std::int32_t kOwnIdentifier = 4242;

    [[nodiscard]] std::vector<RunningApplication> applications() const override { return running; }
    [[nodiscard]] std::int32_t currentProcessIdentifier() const override { return kOwnIdentifier; }

    void start(std::int32_t identifier, std::string displayName) {
        running.push_back({identifier, {std::move(displayName)}});
    }

    std::vector<RunningApplication> running;
};

}  // namespace qrx::platform
