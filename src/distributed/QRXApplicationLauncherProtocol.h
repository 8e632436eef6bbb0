#pragma once

#include <optional>
#include <string>
#include <vector>

#include "distributed/DistributedProtocol.h"
#include "foundation/FilePath.h"

namespace qrx {

class QRXDistributedProxy;

/// Starting further service applications. Every method is optional: one that a class does not
/// implement answers nothing, or NO.
///
/// An application is a bundle, a folder whose name ends in ".app"; it serves once it has registered
/// its connection name. A protocol may be null: the proxy then conforms to none.
class QRXApplicationLauncherProtocol {
public:
    virtual ~QRXApplicationLauncherProtocol() = default;

    /// As the next form, with an application of the resource folder; ".app" is added to a `title`
    /// that does not end so, in whatever case.
    [[nodiscard]] virtual std::optional<QRXDistributedProxy>
    launchDistributedBundledApplicationWithTitle(const std::string& title,
                                                 const std::optional<std::string>& registeredName,
                                                 const DistributedProtocol* protocol);

    /// As the next form, with the flag NO.
    [[nodiscard]] virtual std::optional<QRXDistributedProxy> launchDistributedApplicationAtPath(
        const FilePath& path, const std::optional<std::string>& registeredName,
        const DistributedProtocol* protocol);

    /// Starts the bundle at `path` and waits up to 3 seconds for it to register its name; nothing
    /// when it did not.
    [[nodiscard]] virtual std::optional<QRXDistributedProxy> launchDistributedApplicationAtPath(
        const FilePath& path, const std::optional<std::string>& registeredName,
        const DistributedProtocol* protocol, bool appParentCantBeSelf);

    /// Starts the bundle at `path` and does not wait. YES says that it was tried, no more.
    virtual bool launchApplicationAtPath(const FilePath& path,
                                         const std::optional<std::vector<std::string>>& arguments);

    /// Starts a service application and tells it that this process is its parent.
    [[nodiscard]] virtual std::optional<QRXDistributedProxy> launchDistributedApplicationAtPath(
        const FilePath& path, const std::optional<std::string>& registeredName);
    [[nodiscard]] virtual std::optional<QRXDistributedProxy>
    launchDistributedApplicationAtPathParentAppCantBeSelf(
        const FilePath& path, const std::optional<std::string>& registeredName,
        bool parentAppCantBeSelf);

protected:
    QRXApplicationLauncherProtocol() = default;
    QRXApplicationLauncherProtocol(const QRXApplicationLauncherProtocol&) = default;
    QRXApplicationLauncherProtocol& operator=(const QRXApplicationLauncherProtocol&) = default;
};

}  // namespace qrx
