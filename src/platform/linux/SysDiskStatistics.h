#pragma once

#include <filesystem>
#include <vector>

#include "platform/ports/DiskStatistics.h"

namespace qrx::platform {

/// The disks as /sys/block lists them, with the figures of /proc/diskstats. Read anew at every
/// call.
class SysDiskStatistics final : public DiskStatistics {
public:
    /// @param root  folder that holds `proc` and `sys`; tests point it at their own.
    explicit SysDiskStatistics(std::filesystem::path root = "/");

    [[nodiscard]] std::vector<Disk> disks() const override;
    [[nodiscard]] std::vector<DiskTraffic> traffic() const override;
    [[nodiscard]] double secondsSinceStart() const override;

private:
    std::filesystem::path root_;
};

}  // namespace qrx::platform
