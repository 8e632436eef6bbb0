#include "platform/linux/BlockDevices.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

namespace qrx::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 3> kHotPlugBuses{"usb", "mmc", "firewire"};

/// Mapped devices on mapped devices on loops: far deeper than anybody stacks them.
constexpr int kDeepestStack = 8;

std::optional<fs::path> resolved(const fs::path& path) {
    std::error_code missing;
    fs::path real = fs::canonical(path, missing);
    if (missing) return std::nullopt;
    return real;
}

std::string firstLine(const fs::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

bool isPartition(const fs::path& folder) {
    std::error_code none;
    return fs::exists(folder / "partition", none);
}

/// Whether `path` is `folder` or lies below it.
bool liesIn(std::string_view path, std::string_view folder) {
    if (folder == "/") return path.starts_with('/');
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

}  // namespace

BlockDevices::BlockDevices(fs::path root, const std::vector<MountInfoLine>& mounts)
    : root_(std::move(root)), mounts_(mounts) {}

std::optional<fs::path> BlockDevices::folderOf(const MountInfoLine& mount) const {
    if (std::optional<fs::path> folder = resolved(root_ / "sys/dev/block" / mount.deviceNumber)) {
        return folder;
    }
    // Some file systems (btrfs) mount under a number that is no device's; then the source tells.
    constexpr std::string_view kDeviceFolder = "/dev/";
    if (!mount.source.starts_with(kDeviceFolder)) return std::nullopt;
    const fs::path plain = root_ / mount.source.substr(1);
    const fs::path node = resolved(plain).value_or(plain);  // /dev/mapper and by-uuid are links
    const fs::path devices = resolved(root_ / "dev").value_or(root_ / "dev");
    std::string name = node.lexically_relative(devices).string();
    std::replace(name.begin(), name.end(), '/', '!');  // as sysfs writes cciss/c0d0
    return resolved(root_ / "sys/class/block" / name);
}

bool BlockDevices::isRemovable(const fs::path& folder) const {
    return isRemovable(folder, 0);
}

bool BlockDevices::isRemovable(const fs::path& folder, int depth) const {
    if (depth > kDeepestStack) return false;
    const fs::path disk = isPartition(folder) ? folder.parent_path() : folder;
    return firstLine(disk / "removable") == "1" || sitsOnHotPlugBus(disk) ||
           isMappedToRemovable(disk, depth) || isImageOnRemovable(disk, depth);
}

bool BlockDevices::sitsOnHotPlugBus(const fs::path& disk) const {
    const std::optional<fs::path> devices = resolved(root_ / "sys/devices");
    std::optional<fs::path> device = resolved(disk / "device");
    if (!devices || !device) return false;
    const auto isInside = [&] { return liesIn(device->native(), devices->native()); };
    for (; isInside() && *device != *devices; device = device->parent_path()) {
        std::error_code none;
        const std::string bus = fs::read_symlink(*device / "subsystem", none).filename().string();
        if (std::find(kHotPlugBuses.begin(), kHotPlugBuses.end(), bus) != kHotPlugBuses.end()) {
            return true;
        }
    }
    return false;
}

bool BlockDevices::isMappedToRemovable(const fs::path& disk, int depth) const {
    std::error_code none;
    const fs::directory_iterator below(disk / "slaves", none);
    return std::any_of(begin(below), end(below), [&](const fs::directory_entry& entry) {
        const std::optional<fs::path> folder = resolved(entry.path());
        return folder && isRemovable(*folder, depth + 1);
    });
}

bool BlockDevices::isImageOnRemovable(const fs::path& disk, int depth) const {
    const std::string image = firstLine(disk / "loop/backing_file");
    const MountInfoLine* const mount = image.empty() ? nullptr : mountThatHolds(image);
    if (mount == nullptr) return false;
    const std::optional<fs::path> folder = folderOf(*mount);
    return folder && isRemovable(*folder, depth + 1);
}

const MountInfoLine* BlockDevices::mountThatHolds(const std::string& path) const {
    const MountInfoLine* holder = nullptr;
    for (const MountInfoLine& mount : mounts_) {
        // Of two mounts at one place the later one covers the earlier.
        if (liesIn(path, mount.mountPoint) &&
            (holder == nullptr || mount.mountPoint.size() >= holder->mountPoint.size())) {
            holder = &mount;
        }
    }
    return holder;
}

}  // namespace qrx::platform
