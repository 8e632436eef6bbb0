#include "distributed/QRXDistributedAppController.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <system_error>
#include <thread>
#include <utility>

#include "distributed/DistributedArguments.h"
#include "distributed/DistributedInterfaces.h"
#include "distributed/DistributedMethods.h"
#include "distributed/HostWatch.h"
#include "distributed/ParentWatch.h"
#include "distributed/QRXApplicationLauncher.h"
#include "foundation/NeutralAnswer.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

constexpr std::string_view kHostTitle = "Quillfen";
constexpr std::chrono::seconds kPassInterval{5};
constexpr std::uint64_t kPassesToReceiveAParent = 5;
constexpr std::size_t kNameArgument = 1;
// A child that has registered its name but serves nothing must not keep this process waiting.
constexpr std::chrono::seconds kMostTimeToTellAChild{5};

std::int32_t ownIdentifier() {
    return platform::runningApplications().currentProcessIdentifier();
}

void terminate() {
    platform::mainThread().terminate();
}

bool argumentsContain(std::string_view mark) {
    const auto& arguments = platform::services().arguments;
    return std::find(arguments.begin(), arguments.end(), mark) != arguments.end();
}

void tellParent(QRXDistributedProxy child) {
    try {
        child.setTimeLimit(kMostTimeToTellAChild);
        child.setParentProcessId(ownIdentifier());
    } catch (const std::exception& fault) {
        platform::systemLog().notice(fault.what());
    }
}

}  // namespace

QRXDistributedAppController::QRXDistributedAppController() : parentProcess_(ownIdentifier()) {}

std::vector<std::string> QRXDistributedAppController::validRunningAppTitlesForBackgroundDaemons() {
    return {std::string(kHostTitle)};
}

std::shared_ptr<KillTimer> QRXDistributedAppController::killTimer() const {
    const std::lock_guard lock(mutex_);
    return killTimer_;
}

void QRXDistributedAppController::setKillTimer(std::shared_ptr<KillTimer> timer) {
    const std::lock_guard lock(mutex_);
    killTimer_ = std::move(timer);
}

std::optional<std::string> QRXDistributedAppController::connectionName() const {
    const std::lock_guard lock(mutex_);
    return connectionName_;
}

void QRXDistributedAppController::setConnectionName(std::optional<std::string> name) {
    const std::lock_guard lock(mutex_);
    connectionName_ = std::move(name);
}

void QRXDistributedAppController::vendAsDistributedObject() {
    vendAsDistributedObjectWithArgumentIndexForRegisteredName(kNameArgument);
}

void QRXDistributedAppController::vendAsDistributedObjectWithArgumentIndexForRegisteredName(
    std::size_t index) {
    const auto& arguments = platform::services().arguments;
    vendAsDistributedObjectWithRegisteredName(
        index < arguments.size() ? std::optional(arguments[index]) : std::nullopt);
}

void QRXDistributedAppController::vendAsDistributedObjectWithRegisteredName(
    const std::optional<std::string>& registeredName) {
    if (!registeredName) {
        terminate();
        return;
    }
    try {
        vend(*registeredName);
    } catch (const std::exception& fault) {
        logFault("vendAsDistributedObjectWithRegisteredName", fault.what());
    }
}

void QRXDistributedAppController::vend(const std::string& name) {
    platform::ServiceBus& bus = platform::serviceBus();
    // KEPT: a process that is asked to serve under its own name again finds itself and ends.
    if (bus.rootProxy(name)) {
        terminate();
        return;
    }
    const auto root = std::make_shared<ExportedObject>(interfaceDescriptions(), exportedMethods(),
                                                       wayOutOfLargeAnswers());
    if (!bus.vend(name, root)) {  // somebody took it since
        terminate();
        return;
    }
    setConnectionName(name);
    vended_ = true;
    if (argumentsContain(QRXDistributedParentMustNotBeSelfArgument)) parentCantBeSelf_ = true;
}

void QRXDistributedAppController::ensureValidAppIsRunning() {
    const std::vector<std::string> titles = validRunningAppTitlesForBackgroundDaemons();
    const std::string identifier = std::to_string(ownIdentifier());
    while (true) {
        platform::systemLog().notice(identifier);
        if (!hostIsRunning(titles)) terminate();
        platform::clock().sleepFor(kPassInterval);
    }
}

void QRXDistributedAppController::ensureParentApplicationIsRunning() {
    const std::int32_t self = ownIdentifier();
    for (std::uint64_t pass = 0;; ++pass) {
        const std::int32_t parent = parentProcess_;
        if (!processIsListed(parent)) terminate();
        if (parent == self && pass >= kPassesToReceiveAParent && parentCantBeSelf_) terminate();
        // KEPT: the flag is read and changes nothing; hosts set it all the same.
        static_cast<void>(isBackgroundDaemon_.load());
        platform::clock().sleepFor(kPassInterval);
    }
}

void QRXDistributedAppController::configureKillTimer() {
    if (const auto before = killTimer()) {
        before->invalidate();
        setKillTimer(nullptr);
    }
    const auto timer =
        std::make_shared<KillTimer>(platform::clock().now() + kPassInterval, kPassInterval,
                                    [this] { ensureParentApplicationIsRunning(); });
    setKillTimer(timer);
    // KEPT: fired at once instead of being added to a run loop, so this call keeps its thread for
    // the rest of the process's life.
    timer->fire();
}

std::int32_t QRXDistributedAppController::distributedProcessIdentifier() const {
    return ownIdentifier();
}

void QRXDistributedAppController::setParentProcessId(std::int32_t processIdentifier) {
    parentProcess_ = processIdentifier;
    if (processIdentifier == ownIdentifier()) return;
    detachNewThread([this] { ensureParentApplicationIsRunning(); });
}

void QRXDistributedAppController::killSelf() {
    terminate();
}

std::optional<QRXDistributedProxy> QRXDistributedAppController::launchDistributedApplicationAtPath(
    const FilePath& path, const std::optional<std::string>& registeredName) {
    return launchDistributedApplicationAtPathParentAppCantBeSelf(path, registeredName, false);
}

std::optional<QRXDistributedProxy>
QRXDistributedAppController::launchDistributedApplicationAtPathParentAppCantBeSelf(
    const FilePath& path, const std::optional<std::string>& registeredName,
    bool parentAppCantBeSelf) {
    QRXApplicationLauncher launcher;
    auto child = launcher.launchDistributedApplicationAtPath(
        path, registeredName, &kQRXDistributedAppCommunicationProtocol, parentAppCantBeSelf);
    if (!child) return std::nullopt;
    tellParent(*child);
    ++launchedSubProcesses_;
    return child;
}

void QRXDistributedAppController::awakeFromNib() {
    accessed_ = false;
    parentCantBeSelf_ = false;
    launchedSubProcesses_ = 0;
    parentProcess_ = ownIdentifier();
    setConnectionName(std::nullopt);
    setKillTimer(nullptr);
    vendAsDistributedObject();
}

void QRXDistributedAppController::detachNewThread(std::function<void()> work) {
    try {
        std::thread(std::move(work)).detach();
    } catch (const std::system_error& fault) {  // no thread left
        logFault("detachNewThread", fault.what());
    }
}

std::vector<std::string_view> QRXDistributedAppController::interfaceDescriptions() const {
    return {kQRXDistributedAppCommunicationProtocolXml, kQRXApplicationLauncherProtocolXml};
}

std::vector<BusMethod> QRXDistributedAppController::exportedMethods() {
    return distributedMethods(*this);
}

std::string_view QRXDistributedAppController::wayOutOfLargeAnswers() const {
    return platform::kAskForLess;
}

}  // namespace qrx
