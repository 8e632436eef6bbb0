#include "distributed/DistributedMethods.h"

#include <optional>
#include <string>

#include "distributed/QRXDistributedAppController.h"
#include "distributed/QRXDistributedProxy.h"

namespace qrx {

using platform::BusAnswer;
using platform::BusCall;
using platform::BusObjectPath;
using platform::BusValues;
using platform::ServedOn;

namespace {

std::optional<std::string> presentText(const BusCall& call, std::size_t index) {
    const auto& text = call.argument<std::string>(index);
    return text.empty() ? std::nullopt : std::optional(text);
}

/// (found, bus name, object path); an object path is never empty on the bus.
BusValues proxyResult(const std::optional<QRXDistributedProxy>& proxy) {
    if (!proxy) return {false, "", BusObjectPath{"/"}};
    return {true, proxy->address().busName, BusObjectPath{proxy->address().objectPath}};
}

void addCommunicationMethods(QRXDistributedAppController& controller,
                             std::vector<BusMethod>& methods) {
    const auto add = [&](std::string_view member, ServedOn servedOn, auto answer) {
        methods.push_back({kQRXDistributedAppCommunicationProtocol.interfaceName, member, servedOn,
                           std::move(answer)});
    };
    add("vendAsDistributedObject", ServedOn::mainThread, [&controller](const BusCall&) {
        controller.vendAsDistributedObject();
        return BusAnswer{};
    });
    add("vendAsDistributedObjectWithRegisteredName", ServedOn::mainThread,
        [&controller](const BusCall& call) {
            controller.vendAsDistributedObjectWithRegisteredName(presentText(call, 0));
            return BusAnswer{};
        });
    add("distributedProcessIdentifier", ServedOn::mainThread, [&controller](const BusCall&) {
        return BusAnswer({controller.distributedProcessIdentifier()});
    });
    // These two never return: on the main thread they would keep every later request waiting.
    add("ensureParentApplicationIsRunning", ServedOn::ownThread, [&controller](const BusCall&) {
        controller.ensureParentApplicationIsRunning();
        return BusAnswer{};
    });
    add("configureKillTimer", ServedOn::ownThread, [&controller](const BusCall&) {
        controller.configureKillTimer();
        return BusAnswer{};
    });
    add("setParentProcessId", ServedOn::mainThread, [&controller](const BusCall& call) {
        controller.setParentProcessId(call.argument<std::int32_t>(0));
        return BusAnswer{};
    });
    add("communicationLocked", ServedOn::mainThread,
        [&controller](const BusCall&) { return BusAnswer({controller.communicationLocked()}); });
    add("lockCommunication", ServedOn::mainThread, [&controller](const BusCall&) {
        controller.lockCommunication();
        return BusAnswer{};
    });
    add("killSelf", ServedOn::mainThread, [&controller](const BusCall&) {
        return BusAnswer({}, [&controller] { controller.killSelf(); });
    });
}

void addLauncherMethods(QRXDistributedAppController& controller, std::vector<BusMethod>& methods) {
    const auto add = [&](std::string_view member, auto answer) {
        methods.push_back({kQRXApplicationLauncherProtocol.interfaceName, member,
                           ServedOn::mainThread, std::move(answer)});
    };
    add("launchDistributedApplicationAtPath", [&controller](const BusCall& call) {
        return BusAnswer(proxyResult(controller.launchDistributedApplicationAtPath(
            call.argument<std::string>(0), presentText(call, 1))));
    });
    add("launchDistributedApplicationAtPathWithRegisteredNameParentAppCantBeSelf",
        [&controller](const BusCall& call) {
            return BusAnswer(
                proxyResult(controller.launchDistributedApplicationAtPathParentAppCantBeSelf(
                    call.argument<std::string>(0), presentText(call, 1), call.argument<bool>(2))));
        });
}

}  // namespace

std::vector<BusMethod> distributedMethods(QRXDistributedAppController& controller) {
    std::vector<BusMethod> methods;
    addCommunicationMethods(controller, methods);
    addLauncherMethods(controller, methods);
    return methods;
}

}  // namespace qrx
