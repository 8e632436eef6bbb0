#include "foundation/QRXFileSystemUtility.h"

#include <utility>

#include "foundation/FileOrdering.h"
#include "foundation/ItemLookups.h"
#include "foundation/LayoutTest.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathNames.h"
#include "foundation/Removal.h"
#include "foundation/SharedInstance.h"
#include "foundation/Sizes.h"
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

}  // namespace qrx
