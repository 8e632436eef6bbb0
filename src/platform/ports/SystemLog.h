#pragma once

#include <string_view>

namespace qrx::platform {

/// The system's log. The fixed texts go there as they stand, long reports at debug priority.
class SystemLog {
public:
    virtual ~SystemLog() = default;
    virtual void notice(std::string_view text) = 0;
    virtual void debug(std::string_view text) = 0;
};

}  // namespace qrx::platform
