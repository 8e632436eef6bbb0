#include "foundation/Throughput.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

#include "foundation/DiskReports.h"
#include "foundation/Text.h"
#include "foundation/VolumeNames.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

using platform::DiskTraffic;

constexpr std::size_t kReadings = 5;
constexpr std::chrono::seconds kInterval{1};

std::uint64_t moved(std::uint64_t before, std::uint64_t after) {
    return after > before ? after - before : 0;  // counters start anew when a disk comes back
}

/// What was moved between two readings; disks that came or went in between count as idle.
std::vector<DiskTraffic> difference(const std::vector<DiskTraffic>& before,
                                    const std::vector<DiskTraffic>& after) {
    std::vector<DiskTraffic> result(before.size());
    for (std::size_t n = 0; n < std::min(before.size(), after.size()); ++n) {
        result[n].transfers = moved(before[n].transfers, after[n].transfers);
        result[n].bytes = moved(before[n].bytes, after[n].bytes);
    }
    return result;
}

std::vector<TrafficRow> measuredRows() {
    const platform::DiskStatistics& disks = platform::diskStatistics();
    std::vector<TrafficRow> rows;
    std::vector<DiskTraffic> before = disks.traffic();
    rows.push_back({disks.secondsSinceStart(), before});
    while (rows.size() < kReadings) {
        const auto start = platform::clock().now();
        platform::clock().sleepFor(kInterval);
        const std::chrono::duration<double> passed = platform::clock().now() - start;
        std::vector<DiskTraffic> after = disks.traffic();
        rows.push_back({passed.count(), difference(before, after)});
        before = std::move(after);
    }
    return rows;
}

}  // namespace

unsigned diskNumberOfPath(const FilePath& path) {
    const std::string report = diskListReport(platform::diskStatistics().disks());
    const FilePath named = volumesPath(path, platform::mountTable().entries());
    return diskNumberInReport(replaceAll(report, "\n", ""), named);
}

std::optional<double> currentThroughput(const FilePath& path) {
    if (platform::diskStatistics().traffic().empty()) return std::nullopt;
    const std::string report = trafficReport(measuredRows());
    return throughputInReport(replaceAll(report, "\n", ""), diskNumberOfPath(path));
}

}  // namespace qrx
