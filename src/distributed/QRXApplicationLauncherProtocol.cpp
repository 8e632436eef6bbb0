#include "distributed/QRXApplicationLauncherProtocol.h"

#include "distributed/QRXDistributedProxy.h"

namespace qrx {

using Proxy = std::optional<QRXDistributedProxy>;

Proxy QRXApplicationLauncherProtocol::launchDistributedBundledApplicationWithTitle(
    const std::string&, const std::optional<std::string>&, const DistributedProtocol*) {
    return std::nullopt;
}

Proxy QRXApplicationLauncherProtocol::launchDistributedApplicationAtPath(
    const FilePath&, const std::optional<std::string>&, const DistributedProtocol*) {
    return std::nullopt;
}

Proxy QRXApplicationLauncherProtocol::launchDistributedApplicationAtPath(
    const FilePath&, const std::optional<std::string>&, const DistributedProtocol*, bool) {
    return std::nullopt;
}

bool QRXApplicationLauncherProtocol::launchApplicationAtPath(
    const FilePath&, const std::optional<std::vector<std::string>>&) {
    return false;
}

Proxy QRXApplicationLauncherProtocol::launchDistributedApplicationAtPath(
    const FilePath&, const std::optional<std::string>&) {
    return std::nullopt;
}

Proxy QRXApplicationLauncherProtocol::launchDistributedApplicationAtPathParentAppCantBeSelf(
    const FilePath&, const std::optional<std::string>&, bool) {
    return std::nullopt;
}

}  // namespace qrx
