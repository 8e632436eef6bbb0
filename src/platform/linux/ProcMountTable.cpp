#include "platform/linux/ProcMountTable.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/BlockDevices.h"
#include "platform/linux/MountInfo.h"

namespace qrx::platform {

ProcMountTable::ProcMountTable(std::filesystem::path root) : root_(std::move(root)) {}

std::vector<MountEntry> ProcMountTable::entries() const {
    const std::vector<MountInfoLine> mounts = mountsBelow(root_);
    const BlockDevices devices(root_, mounts);
    std::map<std::filesystem::path, bool> removable;  // one disk often stands behind many mounts
    std::vector<MountEntry> found;
    found.reserve(mounts.size());
    for (const MountInfoLine& mount : mounts) {
        MountEntry& entry = found.emplace_back();
        entry.mountPoint = mount.mountPoint;
        entry.device = mount.source;
        entry.fileSystemType = mount.fileSystemType;
        if (const std::optional<std::filesystem::path> folder = devices.folderOf(mount)) {
            const auto [known, isNew] = removable.try_emplace(*folder, false);
            if (isNew) known->second = devices.isRemovable(*folder);
            entry.isBlockDevice = true;
            entry.isRemovableDisk = known->second;
        }
    }
    return found;
}

}  // namespace qrx::platform
