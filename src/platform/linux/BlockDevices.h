#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/MountInfo.h"

namespace qrx::platform {

/// What sysfs tells about the block devices behind mounts.
class BlockDevices {
public:
    /// @param root   folder that holds `sys` and `dev`.
    /// @param mounts the mount table; outlives this object. Tells on which disk the image behind a
    ///               loop device lies.
    BlockDevices(std::filesystem::path root, const std::vector<MountInfoLine>& mounts);

    /// The folder of the mounted device below sys/devices; nothing where it is no block device.
    [[nodiscard]] std::optional<std::filesystem::path> folderOf(const MountInfoLine& mount) const;

    /// Whether the whole disk of the device at `folder` says that it is removable, or sits on usb,
    /// mmc or firewire; for a mapped device or a loop, whether that holds for a disk below it.
    [[nodiscard]] bool isRemovable(const std::filesystem::path& folder) const;

private:
    [[nodiscard]] bool isRemovable(const std::filesystem::path& folder, int depth) const;
    [[nodiscard]] bool sitsOnHotPlugBus(const std::filesystem::path& disk) const;
    [[nodiscard]] bool isMappedToRemovable(const std::filesystem::path& disk, int depth) const;
    [[nodiscard]] bool isImageOnRemovable(const std::filesystem::path& disk, int depth) const;
    [[nodiscard]] const MountInfoLine* mountThatHolds(const std::string& path) const;

    std::filesystem::path root_;
    const std::vector<MountInfoLine>& mounts_;
};

}  // namespace qrx::platform
