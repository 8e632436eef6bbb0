#include "foundation/DiskImages.h"

#include <string_view>

#include <unistd.h>

#include "foundation/Commands.h"
#include "foundation/FileQuestions.h"
#include "foundation/PathNames.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

constexpr const char* kImageTool = "hdiutil";
constexpr std::string_view kImageSuffix = ".dmg";

bool succeeds(const std::string& tool, const CommandArguments& arguments) {
    return commandStatus(tool, arguments) == 0;
}

/// Writes with what this system has. An image that is half written is removed.
bool writeHybridImage(const FilePath& image, const FilePath& folder,
                      const std::string& volumeName) {
    const std::optional<FilePath> tool = commandPath("xorriso");
    if (!tool) return false;
    // Long names and links are kept for other systems (Rock Ridge, Joliet) and for the image's own
    // file system. A relative folder could pass for an option.
    const FilePath source = beginsWith(folder, "/") ? folder : "./" + folder;
    const bool written = succeeds(*tool, {"-as", "mkisofs", "-quiet", "-hfsplus", "-R", "-J",
                                          "-joliet-long", "-V", volumeName, "-o", image, source});
    if (!written) ::unlink(image.c_str());
    return written;
}

/// The loop device that `udisksctl` says it made: "Mapped file X as /dev/loop0."
std::optional<std::string> loopDeviceIn(const std::string& answer) {
    const std::optional<std::size_t> at = find(answer, "/dev/loop");
    if (!at) return std::nullopt;
    const std::size_t end = answer.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789/", *at);
    return answer.substr(*at, end == std::string::npos ? end : end - *at);
}

bool mountThroughDesktop(const FilePath& image) {
    const std::optional<FilePath> tool = commandPath("udisksctl");
    if (!tool) return false;
    const std::optional<std::string> answer = commandOutputWithoutNewlines(
        *tool, {"loop-setup", "--read-only", "--no-user-interaction", "--file", image});
    const std::optional<std::string> device = answer ? loopDeviceIn(*answer) : std::nullopt;
    if (!device) return false;
    return succeeds(*tool, {"mount", "--no-user-interaction", "--block-device", *device});
}

bool mountAsRoot(const FilePath& image, const FilePath& mountPoint) {
    const std::optional<FilePath> tool = commandPath("mount");
    return tool && succeeds(*tool, {"-o", "loop,ro", "--", image, mountPoint});
}

}  // namespace

FilePath diskImagePath(const FilePath& outputFolder, const std::string& imageName) {
    FilePath image = joinedPath(outputFolder, imageName);
    if (!endsWith(image, kImageSuffix)) image += kImageSuffix;
    return image;
}

std::optional<FilePath> writtenDiskImage(const FilePath& folder, const std::string& imageName,
                                         const FilePath& outputFolder,
                                         const std::string& volumeName) {
    if (!folderExists(folder)) return std::nullopt;
    const FilePath image = diskImagePath(outputFolder, imageName);
    const std::optional<FilePath> tool = commandPath(kImageTool);
    platform::systemLog().debug(
        createImageLine(tool.value_or(kImageTool), image, folder, volumeName));
    if (itemExists(image)) return std::nullopt;  // an image is never written over
    const bool written =
        tool ? succeeds(*tool, {"create", image, "-srcfolder", folder, "-volname", volumeName})
             : writeHybridImage(image, folder, volumeName);
    if (!written) return std::nullopt;
    return image;
}

bool mountDiskImage(const FilePath& image, const std::optional<FilePath>& mountPoint) {
    if (!itemExists(image) || isSpecialFile(image)) return false;
    if (mountPoint && !itemExists(*mountPoint)) return false;
    const std::optional<FilePath> tool = commandPath(kImageTool);
    platform::systemLog().debug(attachImageLine(tool.value_or(kImageTool), image, mountPoint));
    if (tool) {
        return succeeds(*tool, mountPoint
                                   ? CommandArguments{"attach", image, "-mountpoint", *mountPoint}
                                   : CommandArguments{"attach", image});
    }
    return mountPoint ? mountAsRoot(image, *mountPoint) : mountThroughDesktop(image);
}

std::string createImageLine(const std::string& tool, const FilePath& image, const FilePath& folder,
                            const std::string& volumeName) {
    return tool + " create " + escapedForTerminal(image) + " -srcfolder " +
           escapedForTerminal(folder) + " -volname " + volumeName;
}

std::string attachImageLine(const std::string& tool, const FilePath& image,
                            const std::optional<FilePath>& mountPoint) {
    std::string line = tool + " attach " + escapedForTerminal(image);
    if (mountPoint) line += " -mountpoint " + escapedForTerminal(*mountPoint);
    return line;
}

}  // namespace qrx
