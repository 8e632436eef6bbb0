#pragma once

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/ports/DiskStatistics.h"
#include "platform/ports/DriveManager.h"
#include "platform/ports/VolumeIdentity.h"

namespace qrx::platform {

/// Disks as a test describes them; each reading of the traffic adds `perReading` to the last.
class FakeDiskStatistics final : public DiskStatistics {
public:
    [[nodiscard]] std::vector<Disk> disks() const override { return present; }
    [[nodiscard]] std::vector<DiskTraffic> traffic() const override {
        std::vector<DiskTraffic> result = moved;
        for (std::size_t n = 0; n < moved.size() && n < perReading.size(); ++n) {
            moved[n].transfers += perReading[n].transfers;
            moved[n].bytes += perReading[n].bytes;
        }
        return result;
    }
    [[nodiscard]] double secondsSinceStart() const override { return seconds; }

    std::vector<Disk> present;
    mutable std::vector<DiskTraffic> moved;
    std::vector<DiskTraffic> perReading;
    double seconds = 1000;
};

class FakeVolumeIdentity final : public VolumeIdentity {
public:
    [[nodiscard]] std::optional<VolumeDescription> describe(
        const std::string& mountPoint) const override {
        const auto found = volumes.find(mountPoint);
        if (found == volumes.end()) return std::nullopt;
        return found->second;
    }

    std::map<std::string, VolumeDescription> volumes;
};

/// Records what it was asked; refuses when told so.
class FakeDriveManager final : public DriveManager {
public:
    void eject(const std::string& device) override {
        ejected.push_back(device);
        if (refuses) throw std::runtime_error("busy");
    }
    void rename(const std::string& device, const std::string& label) override {
        renamed.emplace_back(device, label);
        if (refuses) throw std::runtime_error("busy");
    }

    bool refuses = false;
    std::vector<std::string> ejected;
    std::vector<std::pair<std::string, std::string>> renamed;
};

}  // namespace qrx::platform
