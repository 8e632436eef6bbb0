#include "foundation/Drives.h"

#include <algorithm>
#include <array>

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

using platform::MountEntry;

/// Where desktops mount what is plugged in.
constexpr std::array<std::string_view, 2> kCardFolders{"/media/", "/run/media/"};
constexpr std::string_view kCardFolderInHidden = "/run/media";
constexpr std::array<std::string_view, 5> kHiddenFolders{"/proc", "/sys", "/dev", "/boot", "/run"};

bool isOrLiesIn(std::string_view path, std::string_view folder) {
    return path == folder ||
           (beginsWith(path, folder) && path.substr(folder.size()).starts_with('/'));
}

bool isRemovable(const MountEntry& entry) {
    return entry.isRemovableDisk ||
           std::any_of(kCardFolders.begin(), kCardFolders.end(), [&](std::string_view folder) {
               return beginsWith(entry.mountPoint, folder);
           });
}

/// Ascending by UTF-16 units, each once: of two file systems at one place the upper one is seen.
FilePaths sorted(FilePaths paths) {
    const auto precedes = [](const FilePath& a, const FilePath& b) {
        const std::u16string unitsOfA = utf16Units(a);
        const std::u16string unitsOfB = utf16Units(b);
        return unitsOfA != unitsOfB ? unitsOfA < unitsOfB : a < b;
    };
    std::sort(paths.begin(), paths.end(), precedes);
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    return paths;
}

template <class Condition>
FilePaths mountPointsWhere(const Condition& holds) {
    FilePaths points;
    for (const MountEntry& entry : platform::mountTable().entries()) {
        if (holds(entry)) points.push_back(entry.mountPoint);
    }
    return points;
}

bool standsInUrl(unsigned char byte) {
    constexpr std::string_view kOthers = "/-._~!$&'()*+,;=:@";
    const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    return isLetter || (byte >= '0' && byte <= '9') ||
           kOthers.find(static_cast<char>(byte)) != std::string_view::npos;
}

}  // namespace

FilePaths removableMountPoints() {
    return sorted(mountPointsWhere(isRemovable));
}

FilePaths localMountPoints() {
    return sorted(mountPointsWhere([](const MountEntry& entry) { return entry.isBlockDevice; }));
}

FilePaths allMountPoints() {
    return mountPointsWhere([](const MountEntry&) { return true; });
}

std::vector<std::string> visibleVolumeUrls() {
    std::vector<std::string> urls;
    for (const FilePath& point : allMountPoints()) {
        std::string url = folderUrl(point);
        const bool isNew = std::find(urls.begin(), urls.end(), url) == urls.end();
        if (isNew && !isHiddenMountPoint(point)) urls.push_back(std::move(url));
    }
    return urls;
}

bool isRemovableMountPoint(std::string_view drive) {
    const FilePaths drives = removableMountPoints();
    return std::find(drives.begin(), drives.end(), drive) != drives.end();
}

bool isMountPoint(std::string_view path) {
    const FilePath sought = standardisedPath(path);
    const FilePaths points = allMountPoints();
    return std::any_of(points.begin(), points.end(),
                       [&](const FilePath& point) { return standardisedPath(point) == sought; });
}

bool isHiddenMountPoint(std::string_view mountPoint) {
    if (contains(mountPoint, "/.")) return true;
    if (isOrLiesIn(mountPoint, kCardFolderInHidden)) return false;
    return std::any_of(kHiddenFolders.begin(), kHiddenFolders.end(),
                       [&](std::string_view folder) { return isOrLiesIn(mountPoint, folder); });
}

std::string folderUrl(std::string_view path) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string url = "file://";
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if (standsInUrl(byte)) {
            url += character;
        } else {
            url += '%';
            url += kDigits[byte >> 4U];
            url += kDigits[byte & 0xFU];
        }
    }
    if (!url.ends_with('/')) url += '/';
    return url;
}

}  // namespace qrx
