#include "platform/linux/PlatformServices.h"

#include <memory>

#include "platform/linux/SteadyClock.h"
#include "platform/linux/SyslogSystemLog.h"
#include "platform/linux/UnicodeTextRules.h"
#include "platform/ports/Services.h"

namespace qrx::platform {

void installPlatformServices([[maybe_unused]] const PlatformOptions& options) {
    Services& inForce = services();
    inForce.clock = std::make_shared<SteadyClock>();
    inForce.textRules = std::make_shared<UnicodeTextRules>();
    inForce.systemLog = std::make_shared<SyslogSystemLog>();
}

}  // namespace qrx::platform
