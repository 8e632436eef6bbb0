#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"
#include "platform/ports/MountTable.h"

namespace qrx {

// Hosts name a volume by "/Volumes/NAME". Desktops here mount it elsewhere; these functions read
// one as the other. Texts only: nothing is looked up on disk.

/// `path` with the folder that desktops mount volumes in replaced by "/Volumes": /media/USER/NAME,
/// /run/media/USER/NAME and /mnt/NAME are read as /Volumes/NAME, and so is /media/NAME where a
/// volume is mounted right there. Any other path is answered as it is.
[[nodiscard]] FilePath volumesPath(const FilePath& path,
                                   const std::vector<platform::MountEntry>& mounts);

/// The mounted volume that a host calls `name`; the latest mount where several have it.
[[nodiscard]] std::optional<platform::MountEntry> volumeNamed(
    const std::string& name, const std::vector<platform::MountEntry>& mounts);

}  // namespace qrx
