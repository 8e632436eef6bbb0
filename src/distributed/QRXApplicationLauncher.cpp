#include "distributed/QRXApplicationLauncher.h"

#include <chrono>
#include <exception>
#include <utility>

#include "distributed/DistributedArguments.h"
#include "distributed/QRXDistributedProxy.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

constexpr std::string_view kBundleEnding = ".app";
constexpr std::string_view kExecutableFolder = "/Contents/MacOS";
constexpr std::chrono::seconds kRegistrationTime{3};
constexpr std::chrono::milliseconds kLookAgain{100};

FilePath executableOfBundle(const FilePath& bundle) {
    return joinedPath(bundle + std::string(kExecutableFolder),
                      withoutPathExtension(lastPathComponent(bundle)));
}

/// The root object under `registeredName`; nothing under no name at all.
std::optional<platform::BusAddress> rootProxy(const std::optional<std::string>& registeredName) {
    if (!registeredName) return std::nullopt;
    return platform::serviceBus().rootProxy(*registeredName);
}

std::optional<QRXDistributedProxy> proxyOnceRegistered(
    const std::optional<std::string>& registeredName, const DistributedProtocol* protocol) {
    platform::Clock& clock = platform::clock();
    const auto deadline = clock.now() + kRegistrationTime;
    while (clock.now() < deadline) {
        if (auto address = rootProxy(registeredName)) {
            QRXDistributedProxy proxy(std::move(*address));
            if (protocol != nullptr) proxy.setProtocolForProxy(*protocol);
            return proxy;
        }
        clock.sleepFor(kLookAgain);
    }
    return std::nullopt;
}

}  // namespace

std::optional<QRXDistributedProxy>
QRXApplicationLauncher::launchDistributedBundledApplicationWithTitle(
    const std::string& title, const std::optional<std::string>& registeredName,
    const DistributedProtocol* protocol) {
    FilePath path = joinedPath(platform::services().resourceFolder, title);
    if (!endsWith(lowerCased(path), kBundleEnding)) path += kBundleEnding;
    return launchDistributedApplicationAtPath(path, registeredName, protocol, false);
}

std::optional<QRXDistributedProxy> QRXApplicationLauncher::launchDistributedApplicationAtPath(
    const FilePath& path, const std::optional<std::string>& registeredName,
    const DistributedProtocol* protocol) {
    return launchDistributedApplicationAtPath(path, registeredName, protocol, false);
}

std::optional<QRXDistributedProxy> QRXApplicationLauncher::launchDistributedApplicationAtPath(
    const FilePath& path, const std::optional<std::string>& registeredName,
    const DistributedProtocol* protocol, bool appParentCantBeSelf) {
    const auto launchAndWait = [&]() -> std::optional<QRXDistributedProxy> {
        std::vector<std::string> arguments;
        if (registeredName) arguments.push_back(*registeredName);
        if (appParentCantBeSelf) arguments.emplace_back(QRXDistributedParentMustNotBeSelfArgument);
        if (arguments.empty()) {
            launchApplicationAtPath(path, std::nullopt);
        } else {
            launchApplicationAtPath(path, arguments);
        }
        return proxyOnceRegistered(registeredName, protocol);
    };
    return answerOr(std::optional<QRXDistributedProxy>{}, "launchDistributedApplicationAtPath",
                    launchAndWait);
}

bool QRXApplicationLauncher::launchApplicationAtPath(
    const FilePath& path, const std::optional<std::vector<std::string>>& arguments) {
    try {
        platform::processRunner().launch(
            {.program = executableOfBundle(path),
             .arguments = arguments.value_or(std::vector<std::string>{})});
        ++launchCounter_;
    } catch (const std::exception& fault) {
        platform::systemLog().notice(fault.what());
    }
    // KEPT: YES after a fault too; the answer says that it was tried, and callers wait for the
    // connection name in any case.
    return true;
}

}  // namespace qrx
