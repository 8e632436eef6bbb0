#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "distributed/QRXApplicationLauncherProtocol.h"

namespace qrx {

/// What a host may ask of a service process, whatever its trade. A proxy answers by calling the
/// process; what the process itself does stands with QRXDistributedAppController.
class QRXDistributedAppCommunicationProtocol : public QRXApplicationLauncherProtocol {
public:
    /// Serves under the name that is command-line argument 1.
    virtual void vendAsDistributedObject() = 0;
    /// Serves under `registeredName`; ends the process when it is nothing, or already served.
    virtual void vendAsDistributedObjectWithRegisteredName(
        const std::optional<std::string>& registeredName) = 0;

    [[nodiscard]] virtual std::int32_t distributedProcessIdentifier() const = 0;

    /// Ends the process once its parent is gone. Never returns.
    virtual void ensureParentApplicationIsRunning() = 0;
    /// Makes the timer of that watch and fires it at once. Never returns.
    virtual void configureKillTimer() = 0;
    /// The process whose life the service follows; any but its own starts a watch.
    virtual void setParentProcessId(std::int32_t processIdentifier) = 0;

    /// Whether a client has claimed the service.
    [[nodiscard]] virtual bool communicationLocked() const = 0;
    /// Claims it, for the rest of its life.
    virtual void lockCommunication() = 0;

    /// Ends the process.
    virtual void killSelf() = 0;
};

}  // namespace qrx
