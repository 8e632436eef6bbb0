#pragma once

#include <string>

namespace qrx::platform {

/// The desktop's keeper of drives. Where there is none, nothing happens.
class DriveManager {
public:
    virtual ~DriveManager() = default;

    /// Unmounts the volume on `device` ("/dev/sdb1") and ejects its drive. Throws
    /// std::runtime_error when the keeper refuses.
    virtual void eject(const std::string& device) = 0;
    /// Gives the volume on `device` a new label. Throws std::runtime_error when the keeper refuses.
    virtual void rename(const std::string& device, const std::string& label) = 0;
};

}  // namespace qrx::platform
