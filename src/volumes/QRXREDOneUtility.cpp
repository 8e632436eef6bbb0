#include "volumes/QRXREDOneUtility.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "foundation/FolderListing.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "foundation/TreeWalk.h"
#include "volumes/Siblings.h"

namespace qrx {

namespace {

constexpr std::string_view kReelSuffix = ".RDM";
constexpr std::string_view kClipSuffix = ".RDC";
constexpr std::string_view kRawSuffix = ".R3D";

// The three suffixes in the lower case that the path test asks for.

CheckVerdict isMovByName(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.lowerCased(), ".mov"));
}

CheckVerdict standsInAClip(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(withoutLastPathComponentView(path.lowerCased()), ".rdc"));
}

CheckVerdict standsInAReel(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    const std::string_view clip = withoutLastPathComponentView(path.lowerCased());
    return passesIf(endsWith(withoutLastPathComponentView(clip), ".rdm"));
}

constexpr std::array kClipChecks{
    StructureCheck{"the file's name ends in .mov", isMovByName},
    StructureCheck{"the file stands in a clip's folder, .RDC", standsInAClip},
    StructureCheck{"the clip's folder stands in a reel's, .RDM", standsInAReel},
};

/// Whether `path` is <drive>/<name>.RDM/<name>.RDC. KEPT: in upper case only, unlike the path test.
bool isClipOfDrive(const FilePath& path, const FilePath& drive) {
    return endsWith(path, kClipSuffix) && endsWith(withoutLastPathComponent(path), kReelSuffix) &&
           grandparentFolder(path) == drive;
}

}  // namespace

std::unique_ptr<QRXREDOneUtility> QRXREDOneUtility::volumeUtility() {
    return std::make_unique<QRXREDOneUtility>();
}

QRXREDOneUtility& QRXREDOneUtility::sharedInstance() {
    return sharedInstanceOf<QRXREDOneUtility>();
}

std::span<const StructureCheck> QRXREDOneUtility::structureChecks() const {
    return kClipChecks;
}

bool QRXREDOneUtility::drivePathMatchesVolumeStructure(const FilePath& drive) const {
    return answerOr(false, "drivePathMatchesVolumeStructure", [&] {
        if (!QRXFileSystemUtility::sharedInstance().driveIsRemovable(drive)) return false;
        TreeWalk walk(drive);
        while (walk.next()) {
            if (isClipOfDrive(walk.path(), drive)) return true;
            if (walk.depth() > 0) walk.skipBelow();  // a clip is two levels down
        }
        return false;
    });
}

std::optional<std::string> QRXREDOneUtility::rootOfUniquePathIdenifier() const {
    return std::string(kReelSuffix);
}

std::optional<std::vector<std::string>>
QRXREDOneUtility::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::vector<std::string>{".RDM/"};
}

std::optional<ResetPlan> QRXREDOneUtility::resetPlan(const FilePath& drive) const {
    // KEPT: the item itself goes, not what is on it. The camera lays a card out anew; hosts offer
    // this for folders into which a card was copied, too.
    return ResetPlan{{.kind = ResetStep::Kind::remove, .path = drive}};
}

bool QRXREDOneUtility::pathContainsVideoFilesMatchingVolumeStructure(const FilePath& folder) const {
    return answerOr(false, "pathContainsVideoFilesMatchingVolumeStructure", [&] {
        return QRXFileSystemUtility::sharedInstance().directoryPathHasFilesContainingSubPath(
            folder, std::string(kClipSuffix), true, std::string(kRawSuffix));
    });
}

std::string QRXREDOneUtility::volumePartnerIdentifierForFilePath(const FilePath& file) const {
    const auto reelEnd = find(file, kReelSuffix);
    if (!reelEnd) return QRXQTUtility::volumePartnerIdentifierForFilePath(file);
    return withoutLastPathComponent(file.substr(0, *reelEnd) + std::string(kReelSuffix));
}

bool QRXREDOneUtility::filePathsAreVolumeSiblings(const FilePaths& files) const {
    return allShareOneKey(
        files, [this](const FilePath& file) { return volumePartnerIdentifierForFilePath(file); });
}

FilePath QRXREDOneUtility::sourceFilePathForReferenceFile(const FilePath& file) const {
    const FilePath folder = withoutLastPathComponent(file);
    return folder.empty() ? file : pathToR3DFileinDirectory(folder).value_or(file);
}

std::optional<FilePath> QRXREDOneUtility::pathToR3DFileinDirectory(
    const FilePath& directory) const {
    return answerOr(std::optional<FilePath>(), "pathToR3DFileinDirectory", [&] {
        const auto names = namesInFolder(directory);
        if (!names) return std::optional<FilePath>();
        const auto raw = std::find_if(names->begin(), names->end(), [](const std::string& name) {
            return endsWith(name, ".R3D") || endsWith(name, ".r3d");
        });
        if (raw == names->end()) return std::optional<FilePath>();
        return std::optional(joinedPath(directory, *raw));
    });
}

}  // namespace qrx
