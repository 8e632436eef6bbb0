#pragma once

#include <string>
#include <string_view>

#include "distributed/QRXDistributedAppCommunicationProtocol.h"
#include "platform/ports/ServiceBus.h"

namespace qrx {

/// Stands for the root object of another process. A copy stands for the same object.
///
/// Every call waits for the answer and throws platform::BusError when there is none: the process
/// is gone (also when another has taken its name since), the time limit has passed, or the object
/// has refused. The two methods that never return there do not wait here.
class QRXDistributedProxy : public QRXDistributedAppCommunicationProtocol {
public:
    explicit QRXDistributedProxy(platform::BusAddress object) : object_(std::move(object)) {}

    [[nodiscard]] const platform::BusAddress& address() const { return object_; }

    /// Most time that one call may take; no limit to begin with.
    [[nodiscard]] platform::Clock::Duration timeLimit() const { return timeLimit_; }
    void setTimeLimit(platform::Clock::Duration limit) { timeLimit_ = limit; }

    /// The protocol whose methods `call` calls; none to begin with.
    [[nodiscard]] std::string_view protocolForProxy() const { return interfaceName_; }
    void setProtocolForProxy(const DistributedProtocol& protocol) {
        interfaceName_ = protocol.interfaceName;
    }

    /// Calls a method of the proxy's protocol.
    /// @param signature  types of the arguments, as the bus writes them, e.g. "ssb".
    [[nodiscard]] platform::BusValues call(std::string_view member, std::string_view signature = {},
                                           platform::BusValues arguments = {}) const;

    void vendAsDistributedObject() override;
    void vendAsDistributedObjectWithRegisteredName(
        const std::optional<std::string>& registeredName) override;
    [[nodiscard]] std::int32_t distributedProcessIdentifier() const override;
    void ensureParentApplicationIsRunning() override;
    void configureKillTimer() override;
    void setParentProcessId(std::int32_t processIdentifier) override;
    [[nodiscard]] bool communicationLocked() const override;
    void lockCommunication() override;
    void killSelf() override;

    using QRXApplicationLauncherProtocol::launchDistributedApplicationAtPath;
    [[nodiscard]] std::optional<QRXDistributedProxy> launchDistributedApplicationAtPath(
        const FilePath& path, const std::optional<std::string>& registeredName) override;
    [[nodiscard]] std::optional<QRXDistributedProxy>
    launchDistributedApplicationAtPathParentAppCantBeSelf(
        const FilePath& path, const std::optional<std::string>& registeredName,
        bool parentAppCantBeSelf) override;

private:
    void tell(std::string_view member) const;
    [[nodiscard]] platform::BusValues callProtocol(const DistributedProtocol& protocol,
                                                   std::string_view member,
                                                   std::string_view signature = {},
                                                   platform::BusValues arguments = {}) const;

    platform::BusAddress object_;
    std::string interfaceName_;
    platform::Clock::Duration timeLimit_ = platform::ServiceBus::kNoTimeLimit;
};

}  // namespace qrx
