#pragma once

#include <string_view>

namespace qrx {

// The interface descriptions (D-Bus introspection XML), as they are installed.

extern const std::string_view kQRXHDFileMatcherProtocolXml;
extern const std::string_view kQRXHDFileMatcherStreamXml;

}  // namespace qrx
