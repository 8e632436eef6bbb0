#include "distributed/HostWatch.h"

#include <algorithm>

#include "foundation/Text.h"
#include "platform/ports/Services.h"

namespace qrx {

bool hostIsRunning(const std::vector<std::string>& titles) {
    const auto containsATitle = [&](const std::string& name) {
        return std::any_of(titles.begin(), titles.end(),
                           [&](const std::string& title) { return contains(name, title); });
    };
    const auto running = platform::runningApplications().applications();
    return std::any_of(running.begin(), running.end(), [&](const auto& application) {
        return std::any_of(application.displayNames.begin(), application.displayNames.end(),
                           containsATitle);
    });
}

}  // namespace qrx
