#pragma once

#include <string>
#include <vector>

namespace qrx {

/// Whether a running application shows itself under a name that contains one of `titles`, anywhere
/// and in this case: "Quillfen 10.5" is a host for the title "Quillfen".
[[nodiscard]] bool hostIsRunning(const std::vector<std::string>& titles);

}  // namespace qrx
