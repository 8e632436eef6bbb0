#include "platform/linux/BusCallers.h"

namespace qrx::platform {

void BusCallers::arrived(const std::string& sender) {
    const std::lock_guard lock(mutex_);
    present_.try_emplace(sender);
}

void BusCallers::left(const std::string& sender) {
    std::stop_source source(std::nostopstate);
    {
        const std::lock_guard lock(mutex_);
        const auto found = present_.find(sender);
        if (found == present_.end()) return;
        source = found->second;
        present_.erase(found);
    }
    source.request_stop();  // unlocked: what listens may take its time
}

std::stop_token BusCallers::gone(const std::string& sender) const {
    {
        const std::lock_guard lock(mutex_);
        const auto found = present_.find(sender);
        if (found != present_.end()) return found->second.get_token();
    }
    std::stop_source left;
    left.request_stop();
    return left.get_token();
}

}  // namespace qrx::platform
