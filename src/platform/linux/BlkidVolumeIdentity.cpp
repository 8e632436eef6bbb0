#include "platform/linux/BlkidVolumeIdentity.h"

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <blkid/blkid.h>
#include <sys/stat.h>

#include "platform/linux/MountInfo.h"

namespace qrx::platform {

namespace {

namespace fs = std::filesystem;

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/// Links are named with "\x20" for what may not stand in a file name.
std::string linkNameDecoded(std::string_view name) {
    std::string text;
    while (!name.empty()) {
        if (name.size() >= 4 && name.substr(0, 2) == "\\x" && hexDigit(name[2]) >= 0 &&
            hexDigit(name[3]) >= 0) {
            text += static_cast<char>(hexDigit(name[2]) * 16 + hexDigit(name[3]));
            name.remove_prefix(4);
        } else {
            text += name.front();
            name.remove_prefix(1);
        }
    }
    return text;
}

/// Name of the link in `folder` that leads to `device`; "" when there is none.
std::string linkTo(const fs::path& device, const fs::path& folder) {
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(folder, missing)) {
        std::error_code dangling;
        if (fs::equivalent(entry.path(), device, dangling) && !dangling) {
            return linkNameDecoded(entry.path().filename().string());
        }
    }
    return {};
}

bool isBlockDevice(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISBLK(status.st_mode);
}

std::string probedValue(blkid_probe probe, const char* name) {
    const char* value = nullptr;
    if (blkid_probe_lookup_value(probe, name, &value, nullptr) != 0) return {};
    return value;
}

/// Fills what is still missing from the headers on the device.
void addFromHeaders(VolumeDescription& description) {
    struct Release {
        void operator()(blkid_probe probe) const { blkid_free_probe(probe); }
    };
    const std::unique_ptr<blkid_struct_probe, Release> probe(
        blkid_new_probe_from_filename(description.device.c_str()));
    if (!probe) return;
    blkid_probe_enable_superblocks(probe.get(), 1);
    blkid_probe_set_superblocks_flags(probe.get(), BLKID_SUBLKS_LABEL | BLKID_SUBLKS_UUID);
    if (blkid_do_safeprobe(probe.get()) != 0) return;
    if (description.uuid.empty()) description.uuid = probedValue(probe.get(), "UUID");
    if (description.label.empty()) description.label = probedValue(probe.get(), "LABEL");
}

}  // namespace

BlkidVolumeIdentity::BlkidVolumeIdentity(fs::path root) : root_(std::move(root)) {}

std::optional<VolumeDescription> BlkidVolumeIdentity::describe(
    const std::string& mountPoint) const {
    const std::vector<MountInfoLine> mounts = mountsBelow(root_);
    const auto mount = std::find_if(mounts.rbegin(), mounts.rend(), [&](const auto& line) {
        return line.mountPoint == mountPoint;
    });
    if (mount == mounts.rend() || !mount->source.starts_with("/dev/")) return std::nullopt;
    const fs::path device = root_ / mount->source.substr(1);
    VolumeDescription description{.mountPoint = mountPoint,
                                  .device = mount->source,
                                  .fileSystemType = mount->fileSystemType,
                                  .label = linkTo(device, root_ / "dev/disk/by-label"),
                                  .uuid = linkTo(device, root_ / "dev/disk/by-uuid")};
    const bool isIncomplete = description.uuid.empty() || description.label.empty();
    if (isIncomplete && isBlockDevice(description.device)) addFromHeaders(description);
    return description;
}

}  // namespace qrx::platform
