#pragma once

#include <string>

#include <sys/types.h>

#include "support/TemporaryFolder.h"

namespace qrx::test {

/// A message bus of a test's own, on a Unix socket in a folder of its own; ends with the object.
class PrivateBus {
public:
    /// Throws when there is no dbus-daemon.
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }
    /// Ends the bus under its clients.
    void stop();

private:
    TemporaryFolder folder_;
    std::string address_;
    pid_t daemon_ = -1;
};

}  // namespace qrx::test
