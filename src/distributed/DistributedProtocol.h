#pragma once

#include <string_view>

namespace qrx {

/// A protocol as a value: what a proxy is told to conform to.
struct DistributedProtocol {
    std::string_view interfaceName;  ///< what the protocol is called on the bus
};

inline constexpr DistributedProtocol kQRXDistributedAppCommunicationProtocol{
    "com.quillfen.QRXDistributedAppCommunicationProtocol"};
inline constexpr DistributedProtocol kQRXApplicationLauncherProtocol{
    "com.quillfen.QRXApplicationLauncherProtocol"};

}  // namespace qrx
