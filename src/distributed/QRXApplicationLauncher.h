#pragma once

#include <atomic>
#include <cstdint>

#include "distributed/QRXApplicationLauncherProtocol.h"

namespace qrx {

/// Starts service applications as children and waits for their connection.
///
/// The executable of the bundle "<folder>/Scanner.app" is
/// "<folder>/Scanner.app/Contents/MacOS/Scanner". Its arguments are the connection name, when there
/// is one, and the mark QRXDistributedParentMustNotBeSelfArgument, when it was asked for. A child
/// is never stopped here, also not one that has not registered in time.
class QRXApplicationLauncher final : public QRXApplicationLauncherProtocol {
public:
    /// Launches that raised no fault, whether or not the child registered.
    [[nodiscard]] std::int64_t launchCounter() const { return launchCounter_; }
    void setLaunchCounter(std::int64_t count) { launchCounter_ = count; }

    [[nodiscard]] std::optional<QRXDistributedProxy> launchDistributedBundledApplicationWithTitle(
        const std::string& title, const std::optional<std::string>& registeredName,
        const DistributedProtocol* protocol) override;

    using QRXApplicationLauncherProtocol::launchDistributedApplicationAtPath;
    [[nodiscard]] std::optional<QRXDistributedProxy> launchDistributedApplicationAtPath(
        const FilePath& path, const std::optional<std::string>& registeredName,
        const DistributedProtocol* protocol) override;
    [[nodiscard]] std::optional<QRXDistributedProxy> launchDistributedApplicationAtPath(
        const FilePath& path, const std::optional<std::string>& registeredName,
        const DistributedProtocol* protocol, bool appParentCantBeSelf) override;

    /// YES in every case; a fault is logged. Nothing of `arguments` is no arguments at all.
    bool launchApplicationAtPath(const FilePath& path,
                                 const std::optional<std::vector<std::string>>& arguments) override;

private:
    std::atomic<std::int64_t> launchCounter_ = 0;
};

}  // namespace qrx
