#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qrx::platform {

/// A part of a disk, or a whole disk that is mounted as one.
struct DiskPart {
    std::string device;      ///< as the kernel names it, e.g. "sdb1"
    std::string volumeName;  ///< last component of where it is mounted; "" when it is not
    std::uint64_t bytes = 0;
};

struct Disk {
    std::string device;  ///< e.g. "sdb"
    std::uint64_t bytes = 0;
    std::vector<DiskPart> parts;  ///< in natural order; a disk without partitions has itself
};

/// What one disk has moved since the system started, both ways together.
struct DiskTraffic {
    std::uint64_t transfers = 0;
    std::uint64_t bytes = 0;
};

/// The disks of this machine. Disk n is the n-th block device in natural order of names, memory
/// disks and unused loop devices left out.
class DiskStatistics {
public:
    virtual ~DiskStatistics() = default;

    [[nodiscard]] virtual std::vector<Disk> disks() const = 0;
    /// In the order of `disks`; a disk without figures has zeros.
    [[nodiscard]] virtual std::vector<DiskTraffic> traffic() const = 0;
    /// Seconds since the system started; at least a small positive number.
    [[nodiscard]] virtual double secondsSinceStart() const = 0;
};

}  // namespace qrx::platform
