#pragma once

#include <string>
#include <vector>

namespace qrx::platform {

/// One mounted file system.
struct MountEntry {
    std::string mountPoint;        ///< absolute, unescaped, no trailing "/" (but "/" itself)
    std::string device;            ///< source as the kernel names it, e.g. "/dev/sdb1"
    std::string fileSystemType;    ///< e.g. "exfat"
    bool isBlockDevice = false;    ///< the source is a block device: a local volume
    bool isRemovableDisk = false;  ///< the disk says it is removable, or sits on usb, mmc, firewire
};

/// What is mounted at the moment of the call, in the system's own order.
class MountTable {
public:
    virtual ~MountTable() = default;
    [[nodiscard]] virtual std::vector<MountEntry> entries() const = 0;
};

}  // namespace qrx::platform
