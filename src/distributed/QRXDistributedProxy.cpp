#include "distributed/QRXDistributedProxy.h"

#include <utility>

#include "platform/ports/Services.h"

namespace qrx {

using platform::BusValues;

namespace {

/// The result at `index`; throws when the process has answered with something else.
template <class Kind>
const Kind& resultAt(const BusValues& results, std::size_t index) {
    const Kind* value = index < results.size() ? results[index].as<Kind>() : nullptr;
    if (value == nullptr) {
        throw platform::BusError(platform::BusFault::refused,
                                 "org.freedesktop.DBus.Error.InvalidSignature",
                                 "the answer is not of the type that the protocol names");
    }
    return *value;
}

/// The proxy in an answer (found, bus name, object path). Bound to whoever has the name now.
std::optional<QRXDistributedProxy> proxyFrom(const BusValues& results, std::string connectionName) {
    if (!resultAt<bool>(results, 0)) return std::nullopt;
    auto address = platform::serviceBus().rootProxy(resultAt<std::string>(results, 1));
    if (!address) return std::nullopt;
    address->connectionName = std::move(connectionName);
    address->objectPath = resultAt<platform::BusObjectPath>(results, 2).text;
    QRXDistributedProxy proxy(std::move(*address));
    proxy.setProtocolForProxy(kQRXDistributedAppCommunicationProtocol);
    return proxy;
}

}  // namespace

BusValues QRXDistributedProxy::call(std::string_view member, std::string_view signature,
                                    BusValues arguments) const {
    return callProtocol({interfaceName_}, member, signature, std::move(arguments));
}

BusValues QRXDistributedProxy::callProtocol(const DistributedProtocol& protocol,
                                            std::string_view member, std::string_view signature,
                                            BusValues arguments) const {
    return platform::serviceBus().call(object_,
                                       {.interfaceName = std::string(protocol.interfaceName),
                                        .member = std::string(member),
                                        .signature = std::string(signature),
                                        .arguments = std::move(arguments)},
                                       timeLimit_);
}

void QRXDistributedProxy::tell(std::string_view member) const {
    platform::serviceBus().tell(
        object_,
        {.interfaceName = std::string(kQRXDistributedAppCommunicationProtocol.interfaceName),
         .member = std::string(member),
         .signature = {},
         .arguments = {}});
}

void QRXDistributedProxy::vendAsDistributedObject() {
    static_cast<void>(
        callProtocol(kQRXDistributedAppCommunicationProtocol, "vendAsDistributedObject"));
}

void QRXDistributedProxy::vendAsDistributedObjectWithRegisteredName(
    const std::optional<std::string>& registeredName) {
    static_cast<void>(callProtocol(kQRXDistributedAppCommunicationProtocol,
                                   "vendAsDistributedObjectWithRegisteredName", "s",
                                   {registeredName.value_or("")}));
}

std::int32_t QRXDistributedProxy::distributedProcessIdentifier() const {
    return resultAt<std::int32_t>(
        callProtocol(kQRXDistributedAppCommunicationProtocol, "distributedProcessIdentifier"), 0);
}

void QRXDistributedProxy::ensureParentApplicationIsRunning() {
    tell("ensureParentApplicationIsRunning");
}

void QRXDistributedProxy::configureKillTimer() {
    tell("configureKillTimer");
}

void QRXDistributedProxy::setParentProcessId(std::int32_t processIdentifier) {
    static_cast<void>(callProtocol(kQRXDistributedAppCommunicationProtocol, "setParentProcessId",
                                   "i", {processIdentifier}));
}

bool QRXDistributedProxy::communicationLocked() const {
    return resultAt<bool>(
        callProtocol(kQRXDistributedAppCommunicationProtocol, "communicationLocked"), 0);
}

void QRXDistributedProxy::lockCommunication() {
    static_cast<void>(callProtocol(kQRXDistributedAppCommunicationProtocol, "lockCommunication"));
}

void QRXDistributedProxy::killSelf() {
    static_cast<void>(callProtocol(kQRXDistributedAppCommunicationProtocol, "killSelf"));
}

std::optional<QRXDistributedProxy> QRXDistributedProxy::launchDistributedApplicationAtPath(
    const FilePath& path, const std::optional<std::string>& registeredName) {
    const std::string name = registeredName.value_or("");
    return proxyFrom(callProtocol(kQRXApplicationLauncherProtocol,
                                  "launchDistributedApplicationAtPath", "ss", {path, name}),
                     name);
}

std::optional<QRXDistributedProxy>
QRXDistributedProxy::launchDistributedApplicationAtPathParentAppCantBeSelf(
    const FilePath& path, const std::optional<std::string>& registeredName,
    bool parentAppCantBeSelf) {
    const std::string name = registeredName.value_or("");
    return proxyFrom(
        callProtocol(kQRXApplicationLauncherProtocol,
                     "launchDistributedApplicationAtPathWithRegisteredNameParentAppCantBeSelf",
                     "ssb", {path, name, parentAppCantBeSelf}),
        name);
}

}  // namespace qrx
