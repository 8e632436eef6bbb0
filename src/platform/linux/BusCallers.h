#pragma once

#include <map>
#include <mutex>
#include <stop_token>
#include <string>

namespace qrx::platform {

/// Who has called, as long as it is on the bus. May be used from any thread.
class BusCallers {
public:
    /// A call of `sender` has arrived.
    void arrived(const std::string& sender);
    /// `sender` has left the bus, if it ever called: every token of it is stopped.
    void left(const std::string& sender);
    /// Stopped once `sender` has left; stopped already for one that is not on the bus.
    [[nodiscard]] std::stop_token gone(const std::string& sender) const;

private:
    mutable std::mutex mutex_;
    std::map<std::string, std::stop_source> present_;
};

}  // namespace qrx::platform
