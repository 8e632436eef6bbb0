// The half of the front desk that runs tools and deals with drives.

#include "foundation/Commands.h"
#include "foundation/DiskImages.h"
#include "foundation/DriveActions.h"
#include "foundation/Drives.h"
#include "foundation/FileQuestions.h"
#include "foundation/LayoutTest.h"
#include "foundation/Locks.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/Throughput.h"

namespace qrx {

bool QRXFileSystemUtility::terminalCommandPathIsAvailable(const FilePath& path) const {
    return fileManager_.itemExistsAtPath(path);
}

std::optional<FilePath> QRXFileSystemUtility::pathForTerminalCommand(
    const std::string& tool) const {
    return answerOr(std::optional<FilePath>(), "pathForTerminalCommand",
                    [&] { return commandPath(tool); });
}

std::optional<std::string> QRXFileSystemUtility::executeTerminalCommand(
    const FilePath& tool, const std::vector<std::string>& arguments) const {
    return executeTerminalCommand(tool, arguments, true);
}

std::optional<std::string> QRXFileSystemUtility::executeTerminalCommand(
    const FilePath& tool, const std::vector<std::string>& arguments,
    bool ensureTerminalCommandIsValid) const {
    if (ensureTerminalCommandIsValid && !terminalCommandPathIsAvailable(tool)) return std::nullopt;
    return answerOr(std::optional<std::string>(), "executeTerminalCommand",
                    [&] { return commandOutputWithoutNewlines(tool, arguments); });
}

std::optional<std::string> QRXFileSystemUtility::executeTerminalCommandWithDelimitedArguments(
    const FilePath& tool, const std::vector<std::string>& arguments,
    bool ensureTerminalCommandIsValid) const {
    if (ensureTerminalCommandIsValid && !terminalCommandPathIsAvailable(tool)) return std::nullopt;
    return commandOutput(tool, arguments);
}

FilePaths QRXFileSystemUtility::removableDrives() const {
    return answerOr(FilePaths(), "removableDrives", [] { return removableMountPoints(); });
}

FilePaths QRXFileSystemUtility::localVolumes() const {
    return answerOr(FilePaths(), "localVolumes", [] { return localMountPoints(); });
}

bool QRXFileSystemUtility::driveIsRemovable(const FilePath& path) const {
    return answerOr(false, "driveIsRemovable", [&] { return isRemovableMountPoint(path); });
}

std::vector<std::string> QRXFileSystemUtility::allMountedVolumeURLs() const {
    return answerOr(std::vector<std::string>(), "allMountedVolumeURLs",
                    [] { return visibleVolumeUrls(); });
}

FilePaths QRXFileSystemUtility::allMountedVolumes() const {
    return answerOr(FilePaths(), "allMountedVolumes", [] { return allMountPoints(); });
}

bool QRXFileSystemUtility::volumeMountedAtPath(const std::optional<FilePath>& path) const {
    return path && answerOr(false, "volumeMountedAtPath", [&] { return isMountPoint(*path); });
}

bool QRXFileSystemUtility::removableDriveHasFilesContainingSubPath(
    const FilePath& drive, const std::string& subPath, bool subPathIsSuffix,
    const std::optional<std::string>& extension) const {
    return driveIsRemovable(drive) &&
           directoryPathHasFilesContainingSubPath(drive, subPath, subPathIsSuffix, extension);
}

bool QRXFileSystemUtility::ejectDrive(const std::string& volumeName) const {
    // KEPT: hosts take no answer from this; they look whether the volume is still mounted.
    return answerOr(false, "ejectDrive", [&] {
        ejectVolume(volumeName);
        return false;
    });
}

std::optional<std::string> QRXFileSystemUtility::renameDrive(const std::string& newName,
                                                             const std::string& oldName) const {
    return answerOr(std::optional<std::string>(), "renameDrive",
                    [&] { return renamedVolume(newName, oldName); });
}

unsigned QRXFileSystemUtility::diskNumberForPath(const FilePath& path) const {
    return answerOr(0U, "diskNumberForPath", [&] { return diskNumberOfPath(path); });
}

std::optional<DiskDescription> QRXFileSystemUtility::diskArbitrationAttributesForURL(
    const FilePath& volume) const {
    return answerOr(std::optional<DiskDescription>(), "diskArbitrationAttributesForURL",
                    [&] { return describedVolume(volume); });
}

std::optional<std::string> QRXFileSystemUtility::uuidForDiskRepresentingURL(
    const FilePath& volume) const {
    return answerOr(std::optional<std::string>(), "uuidForDiskRepresentingURL",
                    [&] { return volumeUuid(volume); });
}

std::string QRXFileSystemUtility::generateUUID() const {
    return answerOr(std::string(), "generateUUID", [] { return newUuid(); });
}

std::optional<FilePath> QRXFileSystemUtility::createDiskImageForDirectoryAtPath(
    const FilePath& directory) const {
    return createDiskImageForDirectoryAtPath(directory, lastPathComponent(directory),
                                             withoutLastPathComponent(directory));
}

std::optional<FilePath> QRXFileSystemUtility::createDiskImageForDirectoryAtPath(
    const FilePath& directory, const std::string& dmgName, const FilePath& outputDirectory) const {
    return createDiskImageForDirectoryAtPath(directory, dmgName, outputDirectory,
                                             lastPathComponent(dmgName));
}

std::optional<FilePath> QRXFileSystemUtility::createDiskImageForDirectoryAtPath(
    const FilePath& directory, const std::string& dmgName, const FilePath& outputDirectory,
    const std::string& volumeName) const {
    return answerOr(std::optional<FilePath>(), "createDiskImageForDirectoryAtPath", [&] {
        return writtenDiskImage(directory, dmgName, outputDirectory, volumeName);
    });
}

bool QRXFileSystemUtility::mountDMGLocatatedAt(const FilePath& image,
                                               const std::optional<FilePath>& mountPoint) const {
    return answerOr(false, "mountDMGLocatatedAt",
                    [&] { return mountDiskImage(image, mountPoint); });
}

bool QRXFileSystemUtility::lockItemAtPath(const FilePath& path) const {
    return answerOr(false, "lockItemAtPath", [&] { return lockItem(path); });
}

bool QRXFileSystemUtility::unlockFile(const FilePath& path) const {
    return answerOr(false, "unlockFile", [&] { return unlockItem(path); });
}

bool QRXFileSystemUtility::unlockDirectory(const FilePath& path) const {
    return answerOr(false, "unlockDirectory", [&] { return unlockFolder(path); });
}

std::uint32_t QRXFileSystemUtility::directoryPosixPermissionsForPath(const FilePath& path) const {
    return permissionsOf(path);
}

bool QRXFileSystemUtility::filePathHasWritePermissions(const FilePath& path) const {
    return isWritable(path);
}

std::optional<double> QRXFileSystemUtility::systemOffloadRateForPathInMegaBytesPerSecond(
    const FilePath& path) const {
    return answerOr(std::optional<double>(), "systemOffloadRateForPathInMegaBytesPerSecond",
                    [&] { return currentThroughput(path); });
}

bool QRXFileSystemUtility::bytesForFileAtPath(const FilePath& path, const FilePath& other) const {
    return answerOr(false, "bytesForFileAtPath", [&] { return filesHaveEqualBytes(path, other); });
}

}  // namespace qrx
