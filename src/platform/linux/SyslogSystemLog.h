#pragma once

#include "platform/ports/SystemLog.h"

namespace qrx::platform {

/// syslog(3), facility user. A text is never taken for a format. A text longer than
/// kLongestMessage goes out as several messages, since daemons cut longer ones.
class SyslogSystemLog final : public SystemLog {
public:
    static constexpr std::size_t kLongestMessage = 8000;  ///< bytes

    void notice(std::string_view text) override;
    void debug(std::string_view text) override;
};

}  // namespace qrx::platform
