#include "qrx/RemovalTrouble.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "foundation/PathText.h"

namespace qrx::tool {

namespace {

std::optional<struct statx> stateOf(const FilePath& path) {
    struct statx state {};
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_TYPE, &state) != 0) {
        return std::nullopt;
    }
    return state;
}

bool has(const struct statx& state, std::uint64_t attribute) {
    return (state.stx_attributes_mask & state.stx_attributes & attribute) != 0;
}

}  // namespace

bool isOnReadOnlyFileSystem(const FilePath& path) {
    struct statvfs system {};
    return ::statvfs(path.c_str(), &system) == 0 && (system.f_flag & ST_RDONLY) != 0;
}

bool isMountPoint(const FilePath& path) {
    const auto state = stateOf(path);
    return state && has(*state, STATX_ATTR_MOUNT_ROOT);
}

std::optional<std::string> whyNotRemovable(const FilePath& path) {
    const auto state = stateOf(path);
    if (!state) return std::nullopt;
    if (has(*state, STATX_ATTR_IMMUTABLE)) {
        return "is protected against changes (chattr -i lifts that)";
    }
    if (has(*state, STATX_ATTR_APPEND)) {
        return "is protected against removal (chattr -a lifts that)";
    }
    if (has(*state, STATX_ATTR_MOUNT_ROOT)) return "is the mount point of another drive";
    if (isOnReadOnlyFileSystem(path)) return "is on a drive that is mounted read-only";
    if (::access(withoutLastPathComponent(path).c_str(), W_OK | X_OK) != 0) {
        return "may not be removed by this user";
    }
    return std::nullopt;
}

}  // namespace qrx::tool
