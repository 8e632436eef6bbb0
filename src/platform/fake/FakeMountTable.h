#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/ports/MountTable.h"

namespace qrx::platform {

/// Mounts what a test says.
class FakeMountTable final : public MountTable {
public:
    [[nodiscard]] std::vector<MountEntry> entries() const override { return mounted; }

    /// A card in its reader.
    void mountCard(std::string mountPoint) {
        mounted.push_back({.mountPoint = std::move(mountPoint),
                           .device = "/dev/sdb1",
                           .fileSystemType = "exfat",
                           .isBlockDevice = true,
                           .isRemovableDisk = true});
    }
    /// A disk built into the machine.
    void mountDisk(std::string mountPoint) {
        mounted.push_back({.mountPoint = std::move(mountPoint),
                           .device = "/dev/sda1",
                           .fileSystemType = "ext4",
                           .isBlockDevice = true,
                           .isRemovableDisk = false});
    }
    /// Something without a disk: a share, a file system in memory.
    void mountOther(std::string mountPoint, const std::string& fileSystemType) {
        mounted.push_back({.mountPoint = std::move(mountPoint),
                           .device = fileSystemType,
                           .fileSystemType = fileSystemType,
                           .isBlockDevice = false,
                           .isRemovableDisk = false});
    }

    std::vector<MountEntry> mounted;
};

}  // namespace qrx::platform
