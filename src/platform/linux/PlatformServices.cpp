#include "platform/linux/PlatformServices.h"

#include <memory>
#include <string_view>
#include <utility>

#include "platform/linux/BlkidVolumeIdentity.h"
#include "platform/linux/DesktopThumbnailer.h"
#include "platform/linux/GdbusServiceBus.h"
#include "platform/linux/GlibMainThread.h"
#include "platform/linux/LibxmlParser.h"
#include "platform/linux/PixbufImageCodec.h"
#include "platform/linux/PlistPropertyList.h"
#include "platform/linux/PosixProcessRunner.h"
#include "platform/linux/ProcMountTable.h"
#include "platform/linux/ProcRunningApplications.h"
#include "platform/linux/SteadyClock.h"
#include "platform/linux/SysDiskStatistics.h"
#include "platform/linux/SyslogSystemLog.h"
#include "platform/linux/UdisksDriveManager.h"
#include "platform/linux/UnicodeTextRules.h"
#include "platform/linux/WarmProcessRunner.h"
#include "platform/linux/ZlibInflater.h"
#include "platform/ports/Services.h"

namespace qrx::platform {

namespace {

std::shared_ptr<ProcessRunner> toolRunner(const PlatformOptions& options,
                                          const std::shared_ptr<SystemLog>& log) {
    const ToolLimits limits{.timeLimit = options.toolTimeLimit,
                            .onTimeLimit = options.onToolTimeLimit};
    if (options.usesPlainTool) return std::make_shared<PosixProcessRunner>(limits);
    WarmChoices choices;
    choices.onPlain = [log](std::string_view why) { log->debug(why); };
    return std::make_shared<WarmProcessRunner>(limits, std::move(choices));
}

}  // namespace

void installPlatformServices(const PlatformOptions& options) {
    Services& inForce = services();
    inForce.systemLog = std::make_shared<SyslogSystemLog>();
    const auto runner = toolRunner(options, inForce.systemLog);
    inForce.processRunner = runner;
    inForce.mountTable = std::make_shared<ProcMountTable>(options.systemRoot);
    inForce.mainThread = std::make_shared<GlibMainThread>([runner] { runner->cancelAll(); });
    inForce.clock = std::make_shared<SteadyClock>();
    inForce.textRules = std::make_shared<UnicodeTextRules>();
    inForce.inflater = std::make_shared<ZlibInflater>();
    inForce.diskStatistics = std::make_shared<SysDiskStatistics>(options.systemRoot);
    inForce.volumeIdentity = std::make_shared<BlkidVolumeIdentity>(options.systemRoot);
    inForce.driveManager = std::make_shared<UdisksDriveManager>();
    inForce.imageCodec = std::make_shared<PixbufImageCodec>();
    inForce.thumbnailer = std::make_shared<DesktopThumbnailer>();
    inForce.xmlParser = std::make_shared<LibxmlParser>();
    inForce.propertyLists = std::make_shared<PlistPropertyList>();
    inForce.runningApplications = std::make_shared<ProcRunningApplications>(options.systemRoot);
    inForce.serviceBus = std::make_shared<GdbusServiceBus>(
        "", [mainThread = inForce.mainThread] { mainThread->terminate(); });
}

}  // namespace qrx::platform
