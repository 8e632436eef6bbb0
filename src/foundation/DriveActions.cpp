#include "foundation/DriveActions.h"

#include <array>
#include <cstddef>
#include <random>
#include <string_view>

#include "foundation/Commands.h"
#include "foundation/FileQuestions.h"
#include "foundation/PathNames.h"
#include "foundation/PathText.h"
#include "foundation/VolumeNames.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

constexpr std::string_view kDeviceFolder = "/dev/";
constexpr const char* kUuidKey = "DAVolumeUUID";
constexpr const char* kCompareTool = "cmp";

void addUnlessEmpty(DiskDescription& description, const char* key, const std::string& value) {
    if (!value.empty()) description.emplace(key, value);
}

std::string withoutDeviceFolder(std::string_view device) {
    if (device.starts_with(kDeviceFolder)) device.remove_prefix(kDeviceFolder.size());
    return std::string(device);
}

}  // namespace

void ejectVolume(const std::string& volumeName) {
    const auto mount = volumeNamed(volumeName, platform::mountTable().entries());
    if (mount) platform::driveManager().eject(mount->device);
}

std::optional<std::string> renamedVolume(const std::string& newName, const std::string& oldName) {
    if (withoutCharacters(newName, kInvalidFilePathCharacters) != newName) return std::nullopt;
    const auto mount = volumeNamed(oldName, platform::mountTable().entries());
    if (mount) {
        try {
            platform::driveManager().rename(mount->device, newName);
        } catch (const std::runtime_error& refusal) {
            platform::systemLog().debug(refusal.what());  // the outcome is not examined
        }
    }
    return newName;
}

std::optional<DiskDescription> describedVolume(const FilePath& volume) {
    const auto found = platform::volumeIdentity().describe(standardisedPath(volume));
    if (!found) return std::nullopt;
    DiskDescription description;
    addUnlessEmpty(description, "DAVolumePath", found->mountPoint);
    addUnlessEmpty(description, "DAMediaBSDName", withoutDeviceFolder(found->device));
    addUnlessEmpty(description, "DAVolumeKind", found->fileSystemType);
    addUnlessEmpty(description, "DAVolumeName", found->label);
    addUnlessEmpty(description, kUuidKey, found->uuid);
    return description;
}

std::optional<std::string> volumeUuid(const FilePath& volume) {
    const std::optional<DiskDescription> description = describedVolume(volume);
    if (!description) return std::nullopt;
    const auto found = description->find(kUuidKey);
    if (found == description->end()) return std::nullopt;
    return found->second;
}

std::string newUuid() {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    constexpr std::string_view kForm = "xxxxxxxx-xxxx-4xxx-Vxxx-xxxxxxxxxxxx";  // V: 8, 9, A or B
    std::random_device random;
    std::string text(kForm);
    for (char& c : text) {
        const auto digit = static_cast<std::size_t>(random() & 0xFU);
        if (c == 'x') c = kDigits[digit];
        if (c == 'V') c = kDigits[8 + (digit & 3U)];
    }
    return text;
}

bool filesHaveEqualBytes(const FilePath& a, const FilePath& b) {
    const std::optional<FilePath> tool = commandPath(kCompareTool);
    platform::systemLog().debug(compareLine(tool.value_or(kCompareTool), a, b));
    if (!tool || isSpecialFile(a) || isSpecialFile(b)) return false;
    return commandStatus(*tool, {"--silent", "--", a, b}) == 0;
}

std::string compareLine(const std::string& tool, const FilePath& a, const FilePath& b) {
    return tool + " " + escapedForTerminal(a) + " " + escapedForTerminal(b);
}

}  // namespace qrx
