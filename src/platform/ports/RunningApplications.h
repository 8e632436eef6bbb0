#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qrx::platform {

/// One process of this user.
struct RunningApplication {
    std::int32_t processIdentifier = 0;
    /// The names under which the system shows it, the most telling one first; never empty texts,
    /// none twice.
    std::vector<std::string> displayNames;
};

/// What runs at the moment of the call.
class RunningApplications {
public:
    virtual ~RunningApplications() = default;

    /// The processes of this user, by ascending identifier: never this process itself, never one
    /// that has ended and only waits to be reaped. Empty when the system does not tell.
    [[nodiscard]] virtual std::vector<RunningApplication> applications() const = 0;

    /// This process.
    [[nodiscard]] virtual std::int32_t currentProcessIdentifier() const = 0;
};

}  // namespace qrx::platform
