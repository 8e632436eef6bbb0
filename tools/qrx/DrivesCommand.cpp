#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <sys/statvfs.h>

#include "app/ClipRecord.h"
#include "foundation/QRXFileSystemUtility.h"
#include "qrx/Commands.h"
#include "qrx/JsonText.h"
#include "qrx/ShownText.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
LAYOUTS names every card layout whose drive test says yes; several may, where
cards are built alike. Only removable drives are tested. A drive is removable
when its disk says so, sits on USB, a card reader or FireWire, or is mounted
below /media or /run/media.

Examples:
  qrx drives
  qrx drives --format json)";

struct DrivesOptions {
    std::string format = "table";
};

struct Drive {
    FilePath mountPath;
    bool isRemovable = false;
    std::string device;
    std::string label;
    std::string uuid;
    std::optional<std::uint64_t> size;  ///< bytes
    std::optional<std::uint64_t> free;  ///< bytes
    std::vector<std::string> layouts;
};

std::optional<std::uint64_t> sizeOfFileSystem(const FilePath& mountPath) {
    struct statvfs status {};
    if (::statvfs(mountPath.c_str(), &status) != 0) return std::nullopt;
    return std::uint64_t{status.f_blocks} * status.f_frsize;
}

std::string valueOf(const DiskDescription& description, const char* key) {
    const auto found = description.find(key);
    return found == description.end() ? std::string() : found->second;
}

std::vector<std::string> layoutsOf(const FilePath& mountPath) {
    std::vector<std::string> titles;
    for (const auto* const utility : QRXHDMediaVolumeAggregate::hdUtilitiesOrderedByPrecedent()) {
        if (utility->drivePathMatchesVolumeStructure(mountPath)) {
            titles.push_back(utility->volumeTitle());
        }
    }
    return titles;
}

Drive describedDrive(const FilePath& mountPath, bool isRemovable) {
    const QRXFileSystemUtility& files = QRXFileSystemUtility::sharedInstance();
    Drive drive;
    drive.mountPath = mountPath;
    drive.isRemovable = isRemovable;
    if (const auto description = files.diskArbitrationAttributesForURL(mountPath)) {
        const std::string device = valueOf(*description, "DAMediaBSDName");
        if (!device.empty()) drive.device = "/dev/" + device;
        drive.label = valueOf(*description, "DAVolumeName");
        drive.uuid = valueOf(*description, "DAVolumeUUID");
    }
    drive.size = sizeOfFileSystem(mountPath);
    drive.free = files.spaceRemainingAtDirectory(mountPath);
    if (isRemovable) drive.layouts = layoutsOf(mountPath);
    return drive;
}

/// Removable drives first, then the other local volumes, each in the order of their paths.
std::vector<Drive> mountedDrives(const std::atomic<bool>& isCancelled) {
    const QRXFileSystemUtility& files = QRXFileSystemUtility::sharedInstance();
    std::vector<Drive> drives;
    std::set<FilePath> seen;
    for (const bool removable : {true, false}) {
        for (const FilePath& path : removable ? files.removableDrives() : files.localVolumes()) {
            if (isCancelled) return drives;
            if (seen.insert(path).second) drives.push_back(describedDrive(path, removable));
        }
    }
    return drives;
}

nlohmann::ordered_json sizeJson(std::optional<std::uint64_t> size) {
    if (size) return *size;
    return nullptr;
}

nlohmann::ordered_json knownJson(const std::string& text) {
    return textJson(text.empty() ? std::nullopt : std::optional(text));
}

std::string drivesJson(const std::vector<Drive>& drives) {
    auto all = nlohmann::ordered_json::array();
    for (const Drive& drive : drives) {
        nlohmann::ordered_json record;
        addPath(record, drive.mountPath);
        record["removable"] = drive.isRemovable;
        record["device"] = knownJson(drive.device);
        record["label"] = knownJson(drive.label);
        record["uuid"] = knownJson(drive.uuid);
        record["size"] = sizeJson(drive.size);
        record["free"] = sizeJson(drive.free);
        record["layouts"] = drive.layouts;
        all.push_back(std::move(record));
    }
    constexpr int kIndent = 2;
    return jsonText(all, kIndent) + "\n";
}

std::string sizeColumn(std::optional<std::uint64_t> size) {
    if (!size) return "-";
    return QRXFileSystemUtility::fileSizeDescriptionFromRawSize(static_cast<std::int64_t>(*size));
}

std::string orDash(const std::string& text) {
    return text.empty() ? "-" : text;
}

using Row = std::vector<std::string>;

Row rowOf(const Drive& drive) {
    return {drive.mountPath,
            drive.isRemovable ? "yes" : "no",
            orDash(drive.device),
            orDash(drive.label),
            orDash(drive.uuid),
            sizeColumn(drive.size),
            sizeColumn(drive.free),
            drive.layouts.empty() ? "-" : fmt::format("{}", fmt::join(drive.layouts, ", "))};
}

std::string drivesTable(const std::vector<Drive>& drives) {
    std::vector<Row> rows{
        {"PATH", "REMOVABLE", "DEVICE", "LABEL", "UUID", "SIZE", "FREE", "LAYOUTS"}};
    std::transform(drives.begin(), drives.end(), std::back_inserter(rows), rowOf);
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], ShownText(row[i]).columns());
        }
    }
    std::string text;
    for (const Row& row : rows) {
        for (std::size_t i = 0; i + 1 < row.size(); ++i) {
            const ShownText cell(row[i]);
            text += cell.text() + std::string(widths[i] - cell.columns() + 2, ' ');
        }
        text += row.back() + "\n";
    }
    return text;
}

int listDrives(const DrivesOptions& options, Session& session) {
    const std::vector<Drive> drives = mountedDrives(session.isCancelled);
    if (session.isCancelled) return kTrouble;
    session.output.write(options.format == "json" ? drivesJson(drives) : drivesTable(drives));
    return kDone;
}

}  // namespace

void addDrivesCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<DrivesOptions>();
    CLI::App& command =
        *program.add_subcommand("drives", "List the mounted drives and the layouts on them");
    command.add_option("-f,--format", options->format, "How it is written")
        ->type_name("table|json")
        ->capture_default_str()
        ->check(CLI::IsMember({"table", "json"}));
    command.footer(kFooter);
    command.callback([options, &job] {
        job.run = [options](Session& session) { return listDrives(*options, session); };
    });
}

}  // namespace qrx::tool
