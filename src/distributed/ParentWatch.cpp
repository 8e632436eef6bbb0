#include "distributed/ParentWatch.h"

#include <string>

#include "foundation/QRXFileSystemUtility.h"
#include "foundation/Text.h"

namespace qrx {

bool processIsListed(std::int32_t processIdentifier) {
    const std::string identifier = std::to_string(processIdentifier);
    const auto utility = QRXFileSystemUtility::fileSystemUtility();
    const std::string ps = utility.pathForTerminalCommand("ps").value_or("ps");
    const auto output = utility.executeTerminalCommand(ps, {identifier});
    return output && contains(*output, identifier);
}

}  // namespace qrx
