#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/DriveActions.h"
#include "foundation/Enumeration.h"
#include "foundation/FileManager.h"
#include "foundation/FilePath.h"
#include "foundation/QRXObject.h"
#include "platform/ports/Image.h"

namespace qrx {

/// The one name under which callers reach the file tree. Every operation forwards to the unit that
/// owns its subject; no rule lives here.
///
/// Every call reads the file system anew. No operation throws, but for the one that says so: what
/// is missing or cannot be read gives NO, 0, nothing, an empty list or the input, as stated with
/// each. All may be called from
/// any thread. Lists are in name order (lower-cased text, ties by bytes), and the full paths in
/// them are the folder as given, "/", and the name.
class QRXFileSystemUtility : public QRXObject {
public:
    /// A new object.
    [[nodiscard]] static QRXFileSystemUtility fileSystemUtility();
    /// The process-wide object, made on first use and never destroyed.
    [[nodiscard]] static QRXFileSystemUtility& sharedInstance();

    /// This object's own file manager; lives as long as the object.
    [[nodiscard]] const FileManager& fileManager() const { return fileManager_; }

    // Character sets; each character is one member.

    [[nodiscard]] static std::string invalidFilePathCharacters();
    /// Those of paths and "/".
    [[nodiscard]] static std::string invalidFileNameCharacters();
    [[nodiscard]] static std::string terminalEscapeCharacters();

    // Unique names. Nothing is reserved: another process may take the name meanwhile.

    /// `path` itself when nothing exists there, else the first free one of NAME.EXT, NAME-2.EXT,
    /// ...
    [[nodiscard]] FilePath uniqueFileSystemPathForPath(const FilePath& path) const;
    /// That path, after making a folder there (whether or not that succeeded).
    // NOLINTNEXTLINE(modernize-use-nodiscard): some callers want the folder alone
    FilePath createUniqueDirectoryPathForPath(const FilePath& path) const;
    /// `path` itself when nothing exists there, else the first free one of path-2, path-3, ...
    [[nodiscard]] FilePath directoryPathThatDoesNotYetExistsForPath(const FilePath& path) const;

    // Cleaning and escaping texts.

    /// Without the invalidFilePathCharacters.
    [[nodiscard]] std::string removeInvalidPathCharactersFromPath(const std::string& path) const;
    /// Whether nothing had to be removed; a "/" is no objection.
    [[nodiscard]] bool directoryNameIsValid(const std::string& name) const;
    /// Without a set of its own: as for paths, with the blank and without the backslash.
    [[nodiscard]] std::string removeInvalidFileNameCharactersFromFile(
        const std::string& file) const;
    /// With a backslash before each of the terminalEscapeCharacters.
    [[nodiscard]] std::string escapeFilePathCharacters(const FilePath& path) const;
    /// The same; the misspelt name is part of the interface.
    [[nodiscard]] std::string escapeFilePathCharachters(const FilePath& path) const;
    /// The decimal digits, and the "."s when asked.
    [[nodiscard]] std::string removeNonNumericsFromString(const std::string& text,
                                                          bool keepDecimal) const;

    // Ordering. Always the elements of `paths`; equal ones keep their order.

    /// By the number in the name, ascending.
    [[nodiscard]] FilePaths orderFilePathsByAscendingNumericValue(const FilePaths& paths) const;
    /// By creation date, ascending.
    [[nodiscard]] FilePaths orderFilePathsByCreationDate(const FilePaths& paths) const;

    // Questions about one item.

    /// Whether the last component, or the path itself, begins with ".".
    [[nodiscard]] bool filePathIsHidden(const FilePath& path) const;
    /// Whether the item itself is a symbolic link.
    [[nodiscard]] bool filePathIsASymbolicLink(const FilePath& path) const;
    /// Full path of the first entry whose name contains `pattern` as plain text; else nothing.
    [[nodiscard]] std::optional<FilePath> firstFileMatchingPattern(const std::string& pattern,
                                                                   const FilePath& directory) const;
    /// Where a symbolic link leads in the end; `path` itself when it is none or leads nowhere.
    [[nodiscard]] FilePath resolvePath(const FilePath& path) const;
    /// A picture that stands for the item; the empty image for an absent path.
    [[nodiscard]] platform::Image imageForItemAtPath(const std::optional<FilePath>& path) const;

    // Sizes in bytes and comparisons. Sizes are of the item itself: of a link, its text's length.

    /// 0 when it cannot be read.
    [[nodiscard]] std::uint64_t sizeOfFileAtPath(const FilePath& path) const;
    /// NO when either is missing.
    [[nodiscard]] bool sizeOfFileAtPathEqualsSizeAtPath(const FilePath& path,
                                                        const FilePath& other) const;
    /// The last `byteRun` bytes of a regular file; nothing when it is shorter or cannot be read.
    [[nodiscard]] std::optional<std::vector<std::byte>> lastBytesinFile(
        const FilePath& path, std::uint64_t byteRun) const;
    /// Free bytes of the file system that holds `path`; 0 when unknown.
    [[nodiscard]] std::uint64_t freeSpaceAtPath(const FilePath& path) const;
    /// The same of a folder; nothing when it is no folder or unknown.
    [[nodiscard]] std::optional<std::uint64_t> spaceRemainingAtDirectory(
        const FilePath& directory) const;
    /// Everything below that exists and is no folder, hidden items included.
    [[nodiscard]] std::uint64_t numberOfFilesAtDirectory(const FilePath& directory) const;
    /// Total size of sourceFilesAtDirectory(directory).
    [[nodiscard]] std::int64_t numberOfBytesAtDirectory(const FilePath& directory) const;
    /// Total size of everything below, hidden items included; links are not followed.
    [[nodiscard]] std::uint64_t fastFolderSizeAtFSRef(const FilePath& folder) const;
    /// "1.50 MB"; decimal units. One million exactly is "0.00 GB".
    [[nodiscard]] static std::string fileSizeDescriptionFromRawSize(std::int64_t size);

    // Enumeration.

    /// All source files below: neither hidden, nor in a hidden folder at the top level, nor
    /// dangling links. Large trees: see also forEachSourceFile.
    [[nodiscard]] FilePaths sourceFilesAtDirectory(const FilePath& directory) const;
    /// NO for `recursiveSearch`: one level, hidden items ignored, folders among the answer.
    [[nodiscard]] FilePaths sourceFilesAtDirectory(const FilePath& directory,
                                                   bool recursiveSearch) const;
    /// A recursive search always ignores hidden items, whatever `ignoreHiddenFiles` says.
    [[nodiscard]] FilePaths sourceFilesAtDirectory(const FilePath& directory, bool recursiveSearch,
                                                   bool ignoreHiddenFiles) const;
    /// sourceFilesAtDirectory(directory) with their number and total size.
    [[nodiscard]] FilePaths sourceFilesAtDirectoryNumberOfFiles(const FilePath& directory,
                                                                std::uint64_t& numberOfFiles,
                                                                std::int64_t& sizeOfFiles) const;
    /// As before; with `countDirectories` folders are in the answer, but not in the numbers.
    [[nodiscard]] FilePaths sourceFilesAtDirectoryCountDirectories(const FilePath& directory,
                                                                   bool countDirectories,
                                                                   std::uint64_t& numberOfFiles,
                                                                   std::int64_t& sizeOfFiles) const;
    /// One level: the files, then the folders.
    [[nodiscard]] FilePaths fullFileSystemPathsForContentsOfDirectoryAtPath(
        const FilePath& directory, bool ignoreHiddenFiles) const;
    /// One level: appends to the two lists, which are untouched when this is no folder.
    void uncoverFileSystemPathsForContentsOfDirectoryAtPath(const FilePath& directory,
                                                            bool ignoreHiddenFiles,
                                                            FilePaths& placeFilesInList,
                                                            FilePaths& andDirectoriesInList) const;
    /// All folders below that are neither hidden nor in a hidden folder at the top level.
    [[nodiscard]] FilePaths subDirectoriesAtDirectory(const FilePath& directory) const;
    /// Whether something below has `subPath` in its full path (at its end for `subPathIsSuffix`)
    /// and, when an extension is given, holds an entry with it one level down, in any case.
    [[nodiscard]] bool directoryPathHasFilesContainingSubPath(
        const FilePath& directory, const std::string& subPath, bool subPathIsSuffix,
        const std::optional<std::string>& extension) const;

    // Removal. Links are removed themselves and never entered; what went before a failing step
    // stays gone.

    /// Removes the item, a folder with all that is in it. NO when missing or not to be removed.
    [[nodiscard]] bool removeContentsAtPath(const FilePath& path) const;
    /// Removes all files below, hidden ones too; the folders stay.
    [[nodiscard]] bool clearDirectoryContents(const FilePath& directory) const;
    /// Removes the folders one level down with all that is in them, except those whose name
    /// contains "CONTENTS"; the files one level down stay.
    void removeDirectoriesAtPath(const FilePath& directory) const;

    // Command-line tools. Run as children without a shell, each argument unchanged; the calling
    // thread waits for the end, however long it takes. An absent argument list is an empty one.

    /// Whether anything exists at `path`.
    [[nodiscard]] bool terminalCommandPathIsAvailable(const FilePath& path) const;
    /// Full path of the program `tool`; nothing when there is none.
    [[nodiscard]] std::optional<FilePath> pathForTerminalCommand(const std::string& tool) const;
    /// With `ensureTerminalCommandIsValid`.
    [[nodiscard]] std::optional<std::string> executeTerminalCommand(
        const FilePath& tool, const std::vector<std::string>& arguments) const;
    /// What the tool wrote to its standard output, newlines removed, whatever its exit status.
    /// Nothing when it cannot be started (logged as "Ex"), or, with
    /// `ensureTerminalCommandIsValid`, when nothing exists at `tool` (then nothing is run).
    [[nodiscard]] std::optional<std::string> executeTerminalCommand(
        const FilePath& tool, const std::vector<std::string>& arguments,
        bool ensureTerminalCommandIsValid) const;
    /// As before, with the newlines kept. The one operation that throws: std::system_error when the
    /// tool cannot be started, platform::RunCancelled when all runs were cancelled.
    [[nodiscard]] std::optional<std::string> executeTerminalCommandWithDelimitedArguments(
        const FilePath& tool, const std::vector<std::string>& arguments,
        bool ensureTerminalCommandIsValid) const;

    // Drives and volumes, as they are mounted at the moment of the call.

    /// Mount paths of removable media, ascending by plain text comparison.
    [[nodiscard]] FilePaths removableDrives() const;
    /// Mount paths of local volumes, sorted likewise.
    [[nodiscard]] FilePaths localVolumes() const;
    /// Whether `path` is one of removableDrives(), as plain text: without a trailing "/".
    [[nodiscard]] bool driveIsRemovable(const FilePath& path) const;
    /// File URLs of the volumes that are not hidden: "file:///media/ann/CARD%201/".
    [[nodiscard]] std::vector<std::string> allMountedVolumeURLs() const;
    /// Mount points of every mounted file system, in the mount table's order.
    [[nodiscard]] FilePaths allMountedVolumes() const;
    /// Whether something is mounted at `path`, both sides standardised; NO for an absent path.
    [[nodiscard]] bool volumeMountedAtPath(const std::optional<FilePath>& path) const;
    /// directoryPathHasFilesContainingSubPath, of one of removableDrives() only.
    [[nodiscard]] bool removableDriveHasFilesContainingSubPath(
        const FilePath& drive, const std::string& subPath, bool subPathIsSuffix,
        const std::optional<std::string>& extension) const;
    /// Unmounts and ejects the volume that hosts call "/Volumes/" `volumeName`.
    /// KEPT: NO in every case, also after success; hosts look whether it is still mounted.
    // NOLINTNEXTLINE(modernize-use-nodiscard): the answer says nothing
    bool ejectDrive(const std::string& volumeName) const;
    /// Asks for a new volume name; the outcome is not examined. `newName`, or nothing when it holds
    /// a character that names of folders may not have.
    [[nodiscard]] std::optional<std::string> renameDrive(const std::string& newName,
                                                         const std::string& oldName) const;
    /// Number of the disk that holds the volume of `path`, below "/Volumes/" or where desktops
    /// mount volumes; 0 when unknown.
    [[nodiscard]] unsigned diskNumberForPath(const FilePath& path) const;
    /// What the volume's own headers say, by the keys of the hosts ("DAVolumeUUID" and others);
    /// nothing when none is mounted at `volume`.
    [[nodiscard]] std::optional<DiskDescription> diskArbitrationAttributesForURL(
        const FilePath& volume) const;
    /// The volume's UUID as its file system writes it; nothing without one.
    [[nodiscard]] std::optional<std::string> uuidForDiskRepresentingURL(
        const FilePath& volume) const;
    /// A new random UUID as text, in capitals.
    [[nodiscard]] std::string generateUUID() const;

    // Disk images.

    /// An image named after the folder, beside it.
    [[nodiscard]] std::optional<FilePath> createDiskImageForDirectoryAtPath(
        const FilePath& directory) const;
    /// The volume is named after the image.
    [[nodiscard]] std::optional<FilePath> createDiskImageForDirectoryAtPath(
        const FilePath& directory, const std::string& dmgName,
        const FilePath& outputDirectory) const;
    /// Path of the image, ".dmg" appended unless the name ends so; nothing when the folder is none,
    /// the image exists already, or the tool is missing or fails.
    [[nodiscard]] std::optional<FilePath> createDiskImageForDirectoryAtPath(
        const FilePath& directory, const std::string& dmgName, const FilePath& outputDirectory,
        const std::string& volumeName) const;
    /// Mounts an image. NO when it or the mount point does not exist, or the tool fails. The
    /// misspelt name is part of the interface.
    [[nodiscard]] bool mountDMGLocatatedAt(const FilePath& image,
                                           const std::optional<FilePath>& mountPoint) const;

    // Locks and permissions.

    /// Sets the immutable flag on the item and everything below it.
    [[nodiscard]] bool lockItemAtPath(const FilePath& path) const;
    /// Removes it again; a failure's exit status is logged as "Message: %d".
    [[nodiscard]] bool unlockFile(const FilePath& path) const;
    /// As unlockFile; NO at once when the user may not write the folder.
    [[nodiscard]] bool unlockDirectory(const FilePath& path) const;
    /// POSIX permission bits; 0 when unreadable.
    [[nodiscard]] std::uint32_t directoryPosixPermissionsForPath(const FilePath& path) const;
    /// Whether the current user may write the item.
    [[nodiscard]] bool filePathHasWritePermissions(const FilePath& path) const;

    // Throughput and comparison.

    /// Megabytes per second that the volume's disk moves at present; takes about four seconds.
    /// Nothing for an idle disk (below 1).
    [[nodiscard]] std::optional<double> systemOffloadRateForPathInMegaBytesPerSecond(
        const FilePath& path) const;
    /// Whether the `cmp` tool finds all bytes equal; NO for what cannot be read.
    [[nodiscard]] bool bytesForFileAtPath(const FilePath& path, const FilePath& other) const;

private:
    FileManager fileManager_;
};

}  // namespace qrx
