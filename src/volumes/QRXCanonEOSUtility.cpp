#include "volumes/QRXCanonEOSUtility.h"

#include <array>
#include <string_view>
#include <utility>

#include "foundation/FileOrdering.h"
#include "foundation/FileQuestions.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/ClipNumbers.h"
#include "volumes/DriveTest.h"
#include "volumes/KeyOrder.h"
#include "volumes/QuickTimeChecks.h"
#include "volumes/ResetWalk.h"
#include "volumes/Siblings.h"

namespace qrx {

namespace {

constexpr std::string_view kMediaFolder = "/DCIM/";
constexpr std::string_view kMediaFolderName = "DCIM/";
constexpr std::string_view kClipSuffix = ".MOV";
constexpr std::string_view kSidecarSuffix = ".THM";
constexpr std::array<std::string_view, 2> kDriveItems{"DCIM", "MISC"};

CheckVerdict liesBelowDcim(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(contains(path.upperCased(), kMediaFolder));
}

CheckVerdict isMovByName(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.upperCased(), kClipSuffix));
}

constexpr std::array kClipChecks{
    StructureCheck{"the path leads through a folder DCIM", liesBelowDcim},
    StructureCheck{"the file's name ends in .MOV", isMovByName},
    quicktime::kIsLooseMovie,
};

// KEPT: the folder is sought in the whole path and with case, unlike in the path test: of a card
// that is mounted below a folder DCIM every file goes, and one in small letters is left alone.
// Cameras write capitals, and cards are mounted under their own names.
std::optional<ResetStep> stepFor(const ResetItem& item) {
    if (item.kind == EntryKind::folder || !contains(item.path, kMediaFolder)) return std::nullopt;
    return ResetStep{.kind = ResetStep::Kind::remove, .path = item.path};
}

std::optional<std::int32_t> clipNumber(const FilePath& file) {
    return underscoreNumber(clipName(file), 1);
}

}  // namespace

std::unique_ptr<QRXCanonEOSUtility> QRXCanonEOSUtility::volumeUtility() {
    return std::make_unique<QRXCanonEOSUtility>();
}

QRXCanonEOSUtility& QRXCanonEOSUtility::sharedInstance() {
    return sharedInstanceOf<QRXCanonEOSUtility>();
}

std::span<const StructureCheck> QRXCanonEOSUtility::structureChecks() const {
    return kClipChecks;
}

bool QRXCanonEOSUtility::drivePathMatchesVolumeStructure(const FilePath& drive) const {
    return answerOr(false, "drivePathMatchesVolumeStructure",
                    [&] { return isRemovableDriveHolding(drive, kDriveItems); });
}

std::optional<std::string> QRXCanonEOSUtility::rootOfUniquePathIdenifier() const {
    return std::string(kMediaFolder);
}

std::optional<std::vector<std::string>>
QRXCanonEOSUtility::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::vector<std::string>{std::string(kMediaFolder)};
}

std::optional<ResetPlan> QRXCanonEOSUtility::resetPlan(const FilePath& drive) const {
    return planForItemsBelow(drive, stepFor);
}

bool QRXCanonEOSUtility::pathContainsVideoFilesMatchingVolumeStructure(
    const FilePath& folder) const {
    // KEPT: no path of an item ends in "/", so this never finds anything. Hosts find EOS clips file
    // by file.
    return answerOr(false, "pathContainsVideoFilesMatchingVolumeStructure", [&] {
        return QRXFileSystemUtility::sharedInstance().directoryPathHasFilesContainingSubPath(
            folder, std::string(kMediaFolder), true, std::string(kClipSuffix));
    });
}

std::optional<FilePath> QRXCanonEOSUtility::metadataFilePathForVideoFile(
    const FilePath& file) const {
    // KEPT: every ".MOV" of the path is replaced, those in names of folders too, so the clips of a
    // folder that is called so have no sidecar. No camera makes one.
    FilePath sidecar = replaceAllIgnoringCase(file, kClipSuffix, kSidecarSuffix);
    if (!itemExists(sidecar)) return std::nullopt;
    return sidecar;
}

std::optional<std::string> QRXCanonEOSUtility::uniqueIdentifierForVideoFile(
    const FilePath& file) const {
    return answerOr(QRXQTUtility::uniqueIdentifierForVideoFile(file),
                    "uniqueIdentifierForVideoFile", [&]() -> std::optional<std::string> {
                        return lastPathComponent(volumePartnerIdentifierForFilePath(file));
                    });
}

std::string QRXCanonEOSUtility::startTimecodeForVideoFile(const FilePath& file) const {
    return answerOr(QRXTimecodeUtility::defaultTimecode(), "startTimecodeForVideoFile", [&] {
        const auto created = creationDate(file);
        return created ? QRXTimecodeUtility::dateToTimecode(created->seconds)
                       : QRXQTUtility::startTimecodeForVideoFile(file);
    });
}

FilePaths QRXCanonEOSUtility::orderVolumeVideoFiles(const FilePaths& files) const {
    auto ordered = orderedByKey(files, clipNumber);
    return ordered ? std::move(*ordered) : QRXQTUtility::orderVolumeVideoFiles(files);
}

std::string QRXCanonEOSUtility::volumePartnerIdentifierForFilePath(const FilePath& file) const {
    const auto mediaFolder = find(file, kMediaFolderName);
    if (!mediaFolder) return QRXQTUtility::volumePartnerIdentifierForFilePath(file);
    const FilePath card = file.substr(0, *mediaFolder);
    // KEPT: the "/" at the card's end does not count, so this is the folder above the card, and all
    // mounted cards have the same.
    const FilePath above = withoutLastPathComponent(card);
    return folderExists(above) ? above : card;
}

bool QRXCanonEOSUtility::filePathsAreVolumeSiblings(const FilePaths& files) const {
    return allShareOneKey(
        files, [this](const FilePath& file) { return volumePartnerIdentifierForFilePath(file); });
}

}  // namespace qrx
