#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/QRXObject.h"
#include "volumes/PathDictionary.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx {

/// What a host asks about file-system locations. Lives as long as the process and keeps nothing
/// between requests: each works on the file system as it is at that moment. No operation throws.
class QRXHDFileMatcherController : public QRXObject {
public:
    /// The clips at the locations: a location at which nothing exists is passed over, a file stands
    /// for itself, a folder for the source files below it. In the order of the locations and of
    /// each folder's enumeration; a file that is reached twice is told twice.
    [[nodiscard]] std::vector<PathDictionary>
    filePathDictionariesForAllHDFilesAtFileSystemLocations(const FilePaths& locations) const;

    /// Whether the file opens as a movie with a video or a sound track.
    [[nodiscard]] bool filePathIsQuickTime(const FilePath& file) const;

    /// Whether a utility other than the base object claims the file, told by its volume type.
    [[nodiscard]] bool filePathMatchesADefinedVolume(const FilePath& file) const;

    /// What is told of a file that `utility` claims.
    [[nodiscard]] PathDictionary pathDictionaryForFile(
        const FilePath& file, const QRXHDMediaVolumeUtilityObject& utility) const;

    /// Whether the generic QuickTime utility accepts the file: a file by the name of a movie needs
    /// not open as one.
    [[nodiscard]] bool filePathIsQuickTimeCompatible(const FilePath& file) const;

    /// Reserved: always nothing.
    [[nodiscard]] std::optional<FilePaths> filePathsMatchingHDFormats(
        const std::vector<std::string>& formats, const FilePaths& locations) const;

    /// A developer's self-test: looks through one fixed card folder and drops the answer.
    void autoTest() const;
};

}  // namespace qrx
