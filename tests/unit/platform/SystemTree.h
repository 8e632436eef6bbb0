#pragma once

#include <string>
#include <string_view>

#include "support/TemporaryFolder.h"

namespace qrx::test {

/// A made-up tree of /proc, /sys and /dev, as far as the mount table reads it.
class SystemTree : public TemporaryFolder {
public:
    SystemTree() {
        makeFolder("dev");
        makeFolder("sys/devices");
    }

    /// A whole disk.
    /// @param number   "major:minor".
    /// @param folder   its folder below sys/devices, e.g. "pci0000:00/usb1/1-1/host6/block/sdb".
    void addDisk(std::string_view number, const std::string& folder, bool saysRemovable) {
        write("sys/devices/" + folder + "/removable", saysRemovable ? "1\n" : "0\n");
        publish(number, folder);
    }
    /// A partition of the disk at `diskFolder`.
    void addPartition(std::string_view number, const std::string& diskFolder,
                      const std::string& name) {
        write("sys/devices/" + diskFolder + "/" + name + "/partition", "1\n");
        publish(number, diskFolder + "/" + name);
    }
    /// The device that a disk is, one of whose parents (`onBus`, or itself) sits on `bus`.
    void attach(const std::string& diskFolder, const std::string& device, const std::string& onBus,
                const std::string& bus) {
        makeFolder("sys/devices/" + device);
        link("sys/devices/" + diskFolder + "/device", *this / ("sys/devices/" + device));
        makeFolder("sys/bus/" + bus);
        link("sys/devices/" + onBus + "/subsystem", *this / ("sys/bus/" + bus));
    }
    /// The mapped device at `mapped` stands on the device at `below`.
    void addSlave(const std::string& mapped, const std::string& below) {
        const std::string name = below.substr(below.rfind('/') + 1);
        link("sys/devices/" + mapped + "/slaves/" + name, *this / ("sys/devices/" + below));
    }
    void addMount(std::string_view number, std::string_view mountPoint, std::string_view type,
                  std::string_view source) {
        table_ += "30 1 ";
        table_.append(number).append(" / ").append(mountPoint).append(" rw shared:1 - ");
        table_.append(type).append(" ").append(source).append(" rw\n");
        write("proc/self/mountinfo", table_);
    }

private:
    void publish(std::string_view number, const std::string& folder) {
        const std::string name = folder.substr(folder.rfind('/') + 1);
        const std::string target = *this / ("sys/devices/" + folder);
        link("sys/dev/block/" + std::string(number), target);
        link("sys/class/block/" + name, target);
        write("dev/" + name);
    }

    std::string table_;
};

}  // namespace qrx::test
