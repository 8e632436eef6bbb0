#pragma once

#include <string_view>

namespace qrx {

/// The command-line argument that tells a service process that its parent must be another process
/// than itself.
inline constexpr std::string_view QRXDistributedParentMustNotBeSelfArgument =
    "QRXDistributedParentMustNotBeSelfArgument";

}  // namespace qrx
