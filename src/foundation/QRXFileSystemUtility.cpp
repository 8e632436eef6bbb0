#include "foundation/QRXFileSystemUtility.h"

#include <utility>

#include "foundation/Commands.h"
#include "foundation/DiskImages.h"
#include "foundation/Drives.h"
#include "foundation/FileOrdering.h"
#include "foundation/ItemLookups.h"
#include "foundation/LayoutTest.h"
#include "foundation/Locks.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathNames.h"
#include "foundation/PathText.h"
#include "foundation/Removal.h"
#include "foundation/SharedInstance.h"
#include "foundation/Sizes.h"
#include "foundation/Throughput.h"
#include "foundation/UniqueNames.h"

namespace qrx {

namespace {

Hidden hiddenFor(bool ignoreHiddenFiles) {
    return ignoreHiddenFiles ? Hidden::ignored : Hidden::included;
}

}  // namespace

QRXFileSystemUtility QRXFileSystemUtility::fileSystemUtility() {
    return {};
}

QRXFileSystemUtility& QRXFileSystemUtility::sharedInstance() {
    return sharedInstanceOf<QRXFileSystemUtility>();
}

std::string QRXFileSystemUtility::invalidFilePathCharacters() {
    return std::string(kInvalidFilePathCharacters);
}

std::string QRXFileSystemUtility::invalidFileNameCharacters() {
    return std::string(kInvalidFileNameCharacters);
}

std::string QRXFileSystemUtility::terminalEscapeCharacters() {
    return std::string(kTerminalEscapeCharacters);
}

FilePath QRXFileSystemUtility::uniqueFileSystemPathForPath(const FilePath& path) const {
    return answerOr(path, "uniqueFileSystemPathForPath", [&] { return uniquePath(path); });
}

FilePath QRXFileSystemUtility::createUniqueDirectoryPathForPath(const FilePath& path) const {
    return answerOr(path, "createUniqueDirectoryPathForPath",
                    [&] { return createUniqueFolder(path); });
}

FilePath QRXFileSystemUtility::directoryPathThatDoesNotYetExistsForPath(
    const FilePath& path) const {
    return answerOr(path, "directoryPathThatDoesNotYetExistsForPath",
                    [&] { return freeFolderPath(path); });
}

std::string QRXFileSystemUtility::removeInvalidPathCharactersFromPath(
    const std::string& path) const {
    return withoutCharacters(path, kInvalidFilePathCharacters);
}

bool QRXFileSystemUtility::directoryNameIsValid(const std::string& name) const {
    // KEPT: the set is that of paths, so a "/" is no objection, and neither is a double quote.
    return removeInvalidPathCharactersFromPath(name) == name;
}

std::string QRXFileSystemUtility::removeInvalidFileNameCharactersFromFile(
    const std::string& file) const {
    return withoutCharacters(file, kRemovedFileNameCharacters);
}

std::string QRXFileSystemUtility::escapeFilePathCharacters(const FilePath& path) const {
    return escapedForTerminal(path);
}

std::string QRXFileSystemUtility::escapeFilePathCharachters(const FilePath& path) const {
    return escapeFilePathCharacters(path);
}

std::string QRXFileSystemUtility::removeNonNumericsFromString(const std::string& text,
                                                              bool keepDecimal) const {
    return digitsOnly(text, keepDecimal ? Point::kept : Point::dropped);
}

FilePaths QRXFileSystemUtility::orderFilePathsByAscendingNumericValue(
    const FilePaths& paths) const {
    try {
        return byAscendingNumber(paths);
    } catch (const std::exception&) {  // no numbers to be had: the order of recording instead
        return orderFilePathsByCreationDate(paths);
    }
}

FilePaths QRXFileSystemUtility::orderFilePathsByCreationDate(const FilePaths& paths) const {
    return answerOr(paths, "orderFilePathsByCreationDate", [&] { return byCreationDate(paths); });
}

bool QRXFileSystemUtility::filePathIsHidden(const FilePath& path) const {
    return pathIsHidden(path);
}

bool QRXFileSystemUtility::filePathIsASymbolicLink(const FilePath& path) const {
    return isSymbolicLink(path);
}

std::optional<FilePath> QRXFileSystemUtility::firstFileMatchingPattern(
    const std::string& pattern, const FilePath& directory) const {
    return answerOr(std::optional<FilePath>(), "firstFileMatchingPattern",
                    [&] { return firstFileContaining(pattern, directory); });
}

FilePath QRXFileSystemUtility::resolvePath(const FilePath& path) const {
    return answerOr(path, "resolvePath", [&] { return resolvedLink(path); });
}

platform::Image QRXFileSystemUtility::imageForItemAtPath(
    const std::optional<FilePath>& path) const {
    return answerOr(platform::Image(), "imageForItemAtPath", [&] { return itemImage(path); });
}

std::uint64_t QRXFileSystemUtility::sizeOfFileAtPath(const FilePath& path) const {
    return static_cast<std::uint64_t>(itemSize(path).value_or(0));
}

bool QRXFileSystemUtility::sizeOfFileAtPathEqualsSizeAtPath(const FilePath& path,
                                                            const FilePath& other) const {
    return sizesAreEqual(path, other);
}

std::optional<std::vector<std::byte>> QRXFileSystemUtility::lastBytesinFile(
    const FilePath& path, std::uint64_t byteRun) const {
    return answerOr(std::optional<std::vector<std::byte>>(), "lastBytesinFile",
                    [&] { return lastBytes(path, byteRun); });
}

std::uint64_t QRXFileSystemUtility::freeSpaceAtPath(const FilePath& path) const {
    return freeSpace(path).value_or(0);
}

std::optional<std::uint64_t> QRXFileSystemUtility::spaceRemainingAtDirectory(
    const FilePath& directory) const {
    return fileManager_.folderExistsAtPath(directory) ? freeSpace(directory) : std::nullopt;
}

std::uint64_t QRXFileSystemUtility::numberOfFilesAtDirectory(const FilePath& directory) const {
    return answerOr(std::uint64_t{0}, "numberOfFilesAtDirectory",
                    [&] { return numberOfFilesBelow(directory); });
}

std::int64_t QRXFileSystemUtility::numberOfBytesAtDirectory(const FilePath& directory) const {
    return answerOr(std::int64_t{0}, "numberOfBytesAtDirectory",
                    [&] { return measuredSourceFiles(directory, Folders::left).bytes; });
}

std::uint64_t QRXFileSystemUtility::fastFolderSizeAtFSRef(const FilePath& folder) const {
    return answerOr(std::uint64_t{0}, "fastFolderSizeAtFSRef", [&] { return folderSize(folder); });
}

std::string QRXFileSystemUtility::fileSizeDescriptionFromRawSize(std::int64_t size) {
    return sizeText(size);
}

FilePaths QRXFileSystemUtility::sourceFilesAtDirectory(const FilePath& directory) const {
    return sourceFilesAtDirectory(directory, true);
}

FilePaths QRXFileSystemUtility::sourceFilesAtDirectory(const FilePath& directory,
                                                       bool recursiveSearch) const {
    return sourceFilesAtDirectory(directory, recursiveSearch, true);
}

FilePaths QRXFileSystemUtility::sourceFilesAtDirectory(const FilePath& directory,
                                                       bool recursiveSearch,
                                                       bool ignoreHiddenFiles) const {
    return answerOr(FilePaths(), "sourceFilesAtDirectory", [&] {
        // KEPT: a recursive search ignores hidden files whatever it is told.
        return recursiveSearch ? sourceFiles(directory)
                               : shallowSourceFiles(directory, hiddenFor(ignoreHiddenFiles));
    });
}

FilePaths QRXFileSystemUtility::sourceFilesAtDirectoryNumberOfFiles(
    const FilePath& directory, std::uint64_t& numberOfFiles, std::int64_t& sizeOfFiles) const {
    return sourceFilesAtDirectoryCountDirectories(directory, false, numberOfFiles, sizeOfFiles);
}

FilePaths QRXFileSystemUtility::sourceFilesAtDirectoryCountDirectories(
    const FilePath& directory, bool countDirectories, std::uint64_t& numberOfFiles,
    std::int64_t& sizeOfFiles) const {
    MeasuredFiles measured =
        answerOr(MeasuredFiles(), "sourceFilesAtDirectoryCountDirectories", [&] {
            return measuredSourceFiles(directory,
                                       countDirectories ? Folders::counted : Folders::left);
        });
    numberOfFiles = measured.files;
    sizeOfFiles = measured.bytes;
    return std::move(measured.paths);
}

FilePaths QRXFileSystemUtility::fullFileSystemPathsForContentsOfDirectoryAtPath(
    const FilePath& directory, bool ignoreHiddenFiles) const {
    FilePaths paths;
    FilePaths folders;
    uncoverFileSystemPathsForContentsOfDirectoryAtPath(directory, ignoreHiddenFiles, paths,
                                                       folders);
    paths.insert(paths.end(), folders.begin(), folders.end());
    return paths;
}

void QRXFileSystemUtility::uncoverFileSystemPathsForContentsOfDirectoryAtPath(
    const FilePath& directory, bool ignoreHiddenFiles, FilePaths& placeFilesInList,
    FilePaths& andDirectoriesInList) const {
    const FolderContents found =
        answerOr(FolderContents(), "uncoverFileSystemPathsForContentsOfDirectoryAtPath",
                 [&] { return contentsOf(directory, hiddenFor(ignoreHiddenFiles)); });
    placeFilesInList.insert(placeFilesInList.end(), found.files.begin(), found.files.end());
    andDirectoriesInList.insert(andDirectoriesInList.end(), found.folders.begin(),
                                found.folders.end());
}

FilePaths QRXFileSystemUtility::subDirectoriesAtDirectory(const FilePath& directory) const {
    return answerOr(FilePaths(), "subDirectoriesAtDirectory",
                    [&] { return foldersBelow(directory); });
}

bool QRXFileSystemUtility::directoryPathHasFilesContainingSubPath(
    const FilePath& directory, const std::string& subPath, bool subPathIsSuffix,
    const std::optional<std::string>& extension) const {
    return answerOr(false, "directoryPathHasFilesContainingSubPath", [&] {
        return folderHoldsLayout(directory, subPath,
                                 subPathIsSuffix ? SubPath::atEnd : SubPath::anywhere, extension);
    });
}

bool QRXFileSystemUtility::removeContentsAtPath(const FilePath& path) const {
    return answerOr(false, "removeContentsAtPath", [&] { return removeItem(path); });
}

bool QRXFileSystemUtility::clearDirectoryContents(const FilePath& directory) const {
    return answerOr(false, "clearDirectoryContents", [&] { return clearFolder(directory); });
}

void QRXFileSystemUtility::removeDirectoriesAtPath(const FilePath& directory) const {
    (void)answerOr(false, "removeDirectoriesAtPath", [&] {
        removeFoldersIn(directory);
        return true;
    });
}

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
