#pragma once

#include <optional>
#include <string>

#include "foundation/FilePath.h"

namespace qrx {

/// Number of the disk that holds the volume at `path`, 0 when it is not told. A path that stands
/// where desktops mount volumes counts as "/Volumes/NAME/...".
[[nodiscard]] unsigned diskNumberOfPath(const FilePath& path);

/// Megabytes per second that the disk of the volume at `path` moves at present: the mean of five
/// readings, the first of which is the mean since the system started. Takes about four seconds.
/// Nothing for an idle disk (below 1 MB/s), and where there are no disks.
[[nodiscard]] std::optional<double> currentThroughput(const FilePath& path);

}  // namespace qrx
