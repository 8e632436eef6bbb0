#pragma once

#include <string>
#include <string_view>

namespace qrx::platform {

/// What the bus calls the connection that is registered as `connectionName`, any text at all.
///
/// A well-known bus name that may be owned stands for itself. Any other becomes
/// "com.quillfen.connection.n" and the name, every byte outside [A-Za-z0-9] written as "_" and two
/// hexadecimal digits: "My Cards" gives "com.quillfen.connection.nMy_20Cards". Where that is longer
/// than the 255 bytes of a bus name, the SHA-256 of the name, in hexadecimal, stands in its place.
[[nodiscard]] std::string busNameForConnection(std::string_view connectionName);

}  // namespace qrx::platform
