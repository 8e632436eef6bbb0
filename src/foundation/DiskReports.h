#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/FilePath.h"
#include "platform/ports/DiskStatistics.h"

namespace qrx {

// Hosts read disks through two reports, "diskutil list" and "iostat -d". Here both are written from
// the kernel's figures in the layout of those tools, and read by the same rules as theirs.

/// The layout of "diskutil list": per disk a line "/dev/diskN", a heading, and a line per part with
/// the name of the volume.
[[nodiscard]] std::string diskListReport(const std::vector<platform::Disk>& disks);

/// The number of the disk that holds the volume of `path` ("/Volumes/NAME/..."), read from a disk
/// list whose newlines were removed; 0 when it is not told.
/// KEPT: one digit is read, so disks 10 and above read as 1; and a number greater than the number
/// of the path's components reads as 0.
[[nodiscard]] unsigned diskNumberInReport(std::string_view report, const FilePath& path);

/// What the disks moved in one interval.
struct TrafficRow {
    double seconds = 0;  ///< length of the interval
    std::vector<platform::DiskTraffic> traffic;
};

/// The layout of "iostat -d": a line that names the disks, a line of labels (KB/t, tps, MB/s per
/// disk), a line of figures per row. Empty without a disk. MB are 1,048,576 bytes here, as in that
/// tool.
[[nodiscard]] std::string trafficReport(const std::vector<TrafficRow>& rows);

/// Megabytes per second of disk `disk`, averaged over the rows of a traffic report whose newlines
/// were removed; nothing below 1.
/// KEPT: the n-th "mb/s" column is taken for disk n, and the first column of all when there are
/// fewer.
[[nodiscard]] std::optional<double> throughputInReport(std::string_view report, unsigned disk);

}  // namespace qrx
