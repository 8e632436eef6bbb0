#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "distributed/ExportedObject.h"
#include "distributed/KillTimer.h"
#include "distributed/QRXDistributedAppCommunicationProtocol.h"
#include "distributed/QRXDistributedProxy.h"
#include "foundation/QRXObject.h"

namespace qrx {

/// Root object of a service process that a host starts and talks to over a named connection.
///
/// It serves under its connection name, refuses to run twice under one name, ends the process when
/// the host application or the parent process is gone, and starts further service processes.
/// Ending the process is asked of the main thread's terminate.
///
/// Lives until the process ends: the connection and the watches refer to it. The watches read its
/// fields from threads of their own and see a change at their next pass.
class QRXDistributedAppController : public QRXObject,
                                    public QRXDistributedAppCommunicationProtocol {
public:
    QRXDistributedAppController();
    QRXDistributedAppController(const QRXDistributedAppController&) = delete;
    QRXDistributedAppController& operator=(const QRXDistributedAppController&) = delete;

    /// What the display name of a host contains.
    [[nodiscard]] static std::vector<std::string> validRunningAppTitlesForBackgroundDaemons();

    // Fields.

    /// Whether a client has claimed this service.
    [[nodiscard]] bool accessed() const { return accessed_; }
    void setAccessed(bool accessed) { accessed_ = accessed; }
    /// Whether this object is registered under a connection name.
    [[nodiscard]] bool vended() const { return vended_; }
    void setVended(bool vended) { vended_ = vended; }
    [[nodiscard]] bool parentCantBeSelf() const { return parentCantBeSelf_; }
    void setParentCantBeSelf(bool cant) { parentCantBeSelf_ = cant; }
    /// Read by the parent watch, without effect.
    [[nodiscard]] bool isBackgroundDaemon() const { return isBackgroundDaemon_; }
    void setIsBackgroundDaemon(bool is) { isBackgroundDaemon_ = is; }
    /// The process whose life this one follows; itself to begin with.
    [[nodiscard]] std::int32_t parentProcess() const { return parentProcess_; }
    void setParentProcess(std::int32_t identifier) { parentProcess_ = identifier; }
    /// Service processes that this one has started.
    [[nodiscard]] std::int32_t launchedSubProcesses() const { return launchedSubProcesses_; }
    void setLaunchedSubProcesses(std::int32_t count) { launchedSubProcesses_ = count; }
    /// Null when there is none.
    [[nodiscard]] std::shared_ptr<KillTimer> killTimer() const;
    void setKillTimer(std::shared_ptr<KillTimer> timer);
    /// The name last registered.
    [[nodiscard]] std::optional<std::string> connectionName() const;
    void setConnectionName(std::optional<std::string> name);

    // Vending. A fault on the way (no bus, a name that the bus refuses) is logged and dropped: the
    // process then runs on without a name.

    void vendAsDistributedObject() override;
    /// Under the process's argument at `index`, 0 being the program's path.
    void vendAsDistributedObjectWithArgumentIndexForRegisteredName(std::size_t index);
    void vendAsDistributedObjectWithRegisteredName(
        const std::optional<std::string>& registeredName) override;

    // Watches. Each runs on the thread that calls it, a pass every 5 seconds, and never returns.

    /// Ends the process when no host runs.
    void ensureValidAppIsRunning();
    /// Ends the process when "ps" does not list the parent, and after the fifth pass when the
    /// parent must not be this process but still is.
    void ensureParentApplicationIsRunning() override;
    /// A new timer, fired at once: the parent watch on this thread.
    void configureKillTimer() override;

    [[nodiscard]] std::int32_t distributedProcessIdentifier() const override;
    /// Any identifier but this process's own starts a further watch on a thread of its own.
    void setParentProcessId(std::int32_t processIdentifier) override;
    [[nodiscard]] bool communicationLocked() const override { return accessed_; }
    void lockCommunication() override { accessed_ = true; }
    void killSelf() override;

    // Starting further services.

    using QRXApplicationLauncherProtocol::launchDistributedApplicationAtPath;
    [[nodiscard]] std::optional<QRXDistributedProxy> launchDistributedApplicationAtPath(
        const FilePath& path, const std::optional<std::string>& registeredName) override;
    [[nodiscard]] std::optional<QRXDistributedProxy>
    launchDistributedApplicationAtPathParentAppCantBeSelf(
        const FilePath& path, const std::optional<std::string>& registeredName,
        bool parentAppCantBeSelf) override;

    /// Called once the composition has made this object: every field back to its initial value,
    /// then vendAsDistributedObject.
    virtual void awakeFromNib();

protected:
    /// Runs `work` on a new thread that nobody waits for. Tests replace it.
    virtual void detachNewThread(std::function<void()> work);

    /// The protocols that others may call, and their members; a subclass adds its own.
    [[nodiscard]] virtual std::vector<std::string_view> interfaceDescriptions() const;
    [[nodiscard]] virtual std::vector<BusMethod> exportedMethods();
    /// What a caller is told whose answer was too large for the bus.
    [[nodiscard]] virtual std::string_view wayOutOfLargeAnswers() const;

private:
    void vend(const std::string& name);

    std::atomic<bool> accessed_ = false;
    std::atomic<bool> vended_ = false;
    std::atomic<bool> parentCantBeSelf_ = false;
    std::atomic<bool> isBackgroundDaemon_ = false;
    std::atomic<std::int32_t> parentProcess_;
    std::atomic<std::int32_t> launchedSubProcesses_ = 0;
    mutable std::mutex mutex_;  // guards what follows; held for a copy only
    std::shared_ptr<KillTimer> killTimer_;
    std::optional<std::string> connectionName_;
};

}  // namespace qrx
