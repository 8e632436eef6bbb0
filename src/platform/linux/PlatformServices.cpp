#include "platform/linux/PlatformServices.h"

#include <memory>

#include "platform/linux/PosixProcessRunner.h"
#include "platform/linux/ProcRunningApplications.h"
#include "platform/linux/SteadyClock.h"
#include "platform/linux/SyslogSystemLog.h"
#include "platform/linux/UnicodeTextRules.h"
#include "platform/ports/Services.h"

namespace qrx::platform {

void installPlatformServices(const PlatformOptions& options) {
    Services& inForce = services();
    inForce.processRunner = std::make_shared<PosixProcessRunner>(
        ToolLimits{.timeLimit = options.toolTimeLimit, .onTimeLimit = options.onToolTimeLimit});
    inForce.clock = std::make_shared<SteadyClock>();
    inForce.textRules = std::make_shared<UnicodeTextRules>();
    inForce.systemLog = std::make_shared<SyslogSystemLog>();
    inForce.runningApplications = std::make_shared<ProcRunningApplications>(options.systemRoot);
}

}  // namespace qrx::platform
