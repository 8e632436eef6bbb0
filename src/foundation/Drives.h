#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx {

// What is mounted, read anew at every call.

/// Mount points of removable media, ascending by plain text comparison: the disk says that it is
/// removable or sits on a bus for such disks, or it is mounted where desktops mount cards
/// (/media/..., /run/media/...).
[[nodiscard]] FilePaths removableMountPoints();

/// Mount points of block devices, ascending by plain text comparison.
[[nodiscard]] FilePaths localMountPoints();

/// Mount points of every mounted file system, in the system's own order.
[[nodiscard]] FilePaths allMountPoints();

/// File URLs of the mounted volumes that are not hidden, e.g. "file:///media/ann/CARD%201/", in the
/// system's own order.
[[nodiscard]] std::vector<std::string> visibleVolumeUrls();

/// Whether `drive` is one of removableMountPoints(), as plain text.
[[nodiscard]] bool isRemovableMountPoint(std::string_view drive);

/// Whether `path`, standardised, is the standardised mount point of a mounted file system.
[[nodiscard]] bool isMountPoint(std::string_view path);

/// Whether the volume mounted there is one that users do not see: a name in it begins with ".", or
/// it is or lies in /proc, /sys, /dev, /boot or /run (but not /run/media).
[[nodiscard]] bool isHiddenMountPoint(std::string_view mountPoint);

/// URL of the folder at the absolute `path`: "file://", the path with every byte escaped that RFC
/// 3986 does not let stand in one, and a final "/".
[[nodiscard]] std::string folderUrl(std::string_view path);

}  // namespace qrx
