#include "foundation/VolumeNames.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "foundation/PathText.h"

namespace qrx {

namespace {

constexpr std::string_view kVolumes = "/Volumes";

/// "/Volumes" and the components of `components` from `first` on; a trailing "/" is dropped.
FilePath belowVolumes(const std::vector<std::string>& components, std::size_t first) {
    FilePath path(kVolumes);
    for (std::size_t i = first; i < components.size(); ++i) {
        if (components[i] != "/") path += "/" + components[i];
    }
    return path;
}

bool isMountPoint(const FilePath& path, const std::vector<platform::MountEntry>& mounts) {
    return std::any_of(mounts.begin(), mounts.end(),
                       [&](const auto& mount) { return mount.mountPoint == path; });
}

}  // namespace

FilePath volumesPath(const FilePath& path, const std::vector<platform::MountEntry>& mounts) {
    const std::vector<std::string> components = pathComponents(path);
    const auto is = [&](std::size_t at, std::string_view name) {
        return at < components.size() && components[at] == name;
    };
    const auto hasName = [&](std::size_t at) {
        return at < components.size() && components[at] != "/";
    };
    if (!is(0, "/")) return path;
    if (is(1, "mnt") && hasName(2)) return belowVolumes(components, 2);
    if (is(1, "media") && hasName(2) && isMountPoint("/media/" + components[2], mounts)) {
        return belowVolumes(components, 2);
    }
    if (is(1, "media") && hasName(3)) return belowVolumes(components, 3);
    if (is(1, "run") && is(2, "media") && hasName(4)) return belowVolumes(components, 4);
    return path;
}

std::optional<platform::MountEntry> volumeNamed(const std::string& name,
                                                const std::vector<platform::MountEntry>& mounts) {
    if (name.empty()) return std::nullopt;
    const FilePath wanted = std::string(kVolumes) + "/" + name;
    const auto found = std::find_if(mounts.rbegin(), mounts.rend(), [&](const auto& mount) {
        return volumesPath(mount.mountPoint, mounts) == wanted;
    });
    if (found == mounts.rend()) return std::nullopt;
    return *found;
}

}  // namespace qrx
