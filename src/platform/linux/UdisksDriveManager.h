#pragma once

#include <string>

#include "platform/ports/DriveManager.h"

namespace qrx::platform {

/// UDisks2 on the system bus. Nothing happens where it does not answer.
class UdisksDriveManager final : public DriveManager {
public:
    /// @param busAddress  address of the bus to ask; "" for the system bus.
    explicit UdisksDriveManager(std::string busAddress = {});

    void eject(const std::string& device) override;
    void rename(const std::string& device, const std::string& label) override;

private:
    std::string busAddress_;
};

}  // namespace qrx::platform
