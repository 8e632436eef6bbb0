#include "platform/linux/SysDiskStatistics.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/MountInfo.h"

namespace qrx::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t kSectorBytes = 512;  // the unit of sysfs and diskstats, whatever the disk's
constexpr double kLeastSeconds = 0.01;       // the resolution of /proc/uptime

std::string firstWordOf(const fs::path& path) {
    std::ifstream file(path);
    std::string word;
    file >> word;
    return word;
}

std::uint64_t numberIn(const fs::path& path) {
    std::ifstream file(path);
    std::uint64_t number = 0;
    file >> number;
    return file ? number : 0;
}

bool isDigit(char c) {
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

/// The digits that `text` begins with, leading zeros dropped.
std::string_view takeNumber(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    std::string_view number = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(number.size());
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

/// sda9 before sda10.
bool precedesNaturally(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        if (isDigit(a.front()) && isDigit(b.front())) {
            const std::string_view left = takeNumber(a);
            const std::string_view right = takeNumber(b);
            if (left.size() != right.size()) return left.size() < right.size();
            if (left != right) return left < right;
            continue;
        }
        if (a.front() != b.front()) return a.front() < b.front();
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return a.size() < b.size();
}

bool isCounted(const fs::path& blockDevice) {
    const std::string name = blockDevice.filename().string();
    const bool isMemory = name.starts_with("ram") || name.starts_with("zram");
    const bool isUnusedLoop = name.starts_with("loop") && numberIn(blockDevice / "size") == 0;
    return !isMemory && !isUnusedLoop;
}

template <class Keep>
std::vector<std::string> namesIn(const fs::path& folder, Keep keep) {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(folder, missing)) {
        if (keep(entry.path())) names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end(), precedesNaturally);
    return names;
}

std::string lastComponent(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

/// Name of the volume that is mounted from the device with this number; the latest mount counts.
std::string volumeNameOf(const std::string& deviceNumber,
                         const std::vector<MountInfoLine>& mounts) {
    const auto mount = std::find_if(mounts.rbegin(), mounts.rend(), [&](const auto& line) {
        return line.deviceNumber == deviceNumber;
    });
    return mount == mounts.rend() ? std::string() : lastComponent(mount->mountPoint);
}

DiskPart partAt(const fs::path& folder, const std::vector<MountInfoLine>& mounts) {
    return {.device = folder.filename().string(),
            .volumeName = volumeNameOf(firstWordOf(folder / "dev"), mounts),
            .bytes = numberIn(folder / "size") * kSectorBytes};
}

}  // namespace

SysDiskStatistics::SysDiskStatistics(fs::path root) : root_(std::move(root)) {}

std::vector<Disk> SysDiskStatistics::disks() const {
    const std::vector<MountInfoLine> mounts = mountsBelow(root_);
    std::vector<Disk> found;
    for (const std::string& name : namesIn(root_ / "sys/block", isCounted)) {
        const fs::path folder = root_ / "sys/block" / name;
        Disk& disk = found.emplace_back();
        disk.device = name;
        disk.bytes = numberIn(folder / "size") * kSectorBytes;
        for (const std::string& part :
             namesIn(folder, [](const fs::path& path) { return fs::exists(path / "partition"); })) {
            disk.parts.push_back(partAt(folder / part, mounts));
        }
        if (disk.parts.empty()) disk.parts.push_back(partAt(folder, mounts));
    }
    return found;
}

std::vector<DiskTraffic> SysDiskStatistics::traffic() const {
    std::map<std::string, DiskTraffic> byName;
    std::ifstream lines(root_ / "proc/diskstats");
    for (std::string line; std::getline(lines, line);) {
        // major minor name, then reads: done, merged, sectors, time; then the same of writes
        std::istringstream fields(line);
        std::string skipped;
        std::string name;
        std::uint64_t reads = 0;
        std::uint64_t readSectors = 0;
        std::uint64_t writes = 0;
        std::uint64_t writtenSectors = 0;
        fields >> skipped >> skipped >> name >> reads >> skipped >> readSectors >> skipped >>
            writes >> skipped >> writtenSectors;
        if (fields) byName[name] = {reads + writes, (readSectors + writtenSectors) * kSectorBytes};
    }
    std::vector<DiskTraffic> result;
    for (const std::string& name : namesIn(root_ / "sys/block", isCounted)) {
        result.push_back(byName[name]);
    }
    return result;
}

double SysDiskStatistics::secondsSinceStart() const {
    std::ifstream file(root_ / "proc/uptime");
    double seconds = 0;
    file >> seconds;
    return std::max(file ? seconds : 0, kLeastSeconds);
}

}  // namespace qrx::platform
