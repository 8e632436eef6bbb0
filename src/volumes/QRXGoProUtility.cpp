#include "volumes/QRXGoProUtility.h"

#include <array>
#include <string_view>

#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "volumes/DriveTest.h"
#include "volumes/QuickTimeChecks.h"

namespace qrx {

namespace {

constexpr std::string_view kNamePrefix = "GO";
constexpr std::string_view kClipSuffix = ".MP4";
constexpr std::string_view kMediaFolder = "/DCIM/";
constexpr std::string_view kClipFolderSuffix = "GOPRO";
constexpr std::array<std::string_view, 1> kDriveItems{"DCIM/"};

// KEPT: later chapters (GP01...) and newer cameras (GH, GX) name their clips otherwise and are not
// claimed; hosts know those clips as loose movies.
CheckVerdict isNamedByTheCamera(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(beginsWith(path.fileName(), kNamePrefix));
}

CheckVerdict standsInAFolderOfDcim(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    std::string ending(kMediaFolder);
    ending.append(path.folderName()).append("/").append(path.fileName());
    return passesIf(endsWith(path.path(), ending));
}

CheckVerdict isMp4ByName(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.upperCased(), kClipSuffix));
}

// The movie is opened only where name and place have passed.
constexpr std::array kClipChecks{
    StructureCheck{"the file's name begins with GO", isNamedByTheCamera},
    StructureCheck{"the file's folder stands directly in a folder DCIM", standsInAFolderOfDcim},
    quicktime::kIsLooseMovie,
    StructureCheck{"the file's name ends in .MP4", isMp4ByName},
};

bool holds(const FilePath& folder, std::string_view subPath, bool atEnd,
           const std::optional<std::string>& extension) {
    return QRXFileSystemUtility::sharedInstance().directoryPathHasFilesContainingSubPath(
        folder, std::string(subPath), atEnd, extension);
}

}  // namespace

std::unique_ptr<QRXGoProUtility> QRXGoProUtility::volumeUtility() {
    return std::make_unique<QRXGoProUtility>();
}

QRXGoProUtility& QRXGoProUtility::sharedInstance() {
    return sharedInstanceOf<QRXGoProUtility>();
}

std::span<const StructureCheck> QRXGoProUtility::structureChecks() const {
    return kClipChecks;
}

bool QRXGoProUtility::drivePathMatchesVolumeStructure(const FilePath& drive) const {
    return answerOr(false, "drivePathMatchesVolumeStructure", [&] {
        return isRemovableDriveHolding(drive, kDriveItems) &&
               holds(drive, kClipFolderSuffix, true, std::nullopt);
    });
}

std::optional<std::vector<std::string>> QRXGoProUtility::pathComponentsIndicatingTheVolumeHasBegun()
    const {
    return std::vector<std::string>{std::string(kMediaFolder)};
}

bool QRXGoProUtility::pathContainsVideoFilesMatchingVolumeStructure(const FilePath& folder) const {
    return answerOr(false, "pathContainsVideoFilesMatchingVolumeStructure", [&] {
        const std::string extension(kClipSuffix);
        return holds(folder, kMediaFolder, false, extension) &&
               holds(folder, kClipFolderSuffix, true, extension);
    });
}

FilePaths QRXGoProUtility::orderVolumeVideoFiles(const FilePaths& files) const {
    return QRXFileSystemUtility::sharedInstance().orderFilePathsByAscendingNumericValue(files);
}

}  // namespace qrx
