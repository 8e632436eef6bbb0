#include "volumes/QRXSonyXDCAMExUtility.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "foundation/FileQuestions.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "volumes/ClipNumbers.h"
#include "volumes/DriveTest.h"
#include "volumes/KeyOrder.h"
#include "volumes/Siblings.h"
#include "volumes/XdcamChecks.h"

namespace qrx {

namespace {

constexpr std::string_view kClipStore = "/BPAV/CLPR/";
constexpr std::size_t kSpanKeyCharacters = 8;
constexpr std::array<std::string_view, 4> kDriveItems{"BPAV/CLPR", "BPAV/TAKR", "BPAV/CUEUP.XML",
                                                      "BPAV/MEDIAPRO.XML"};

CheckVerdict liesBelowClipStore(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(contains(path.path(), kClipStore));
}

CheckVerdict hasFolderInClipStore(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return xdcam::clipFolderStandsIn(kClipStore, path);
}

constexpr std::array kClipChecks{
    StructureCheck{"the path leads through a folder BPAV/CLPR (written in capitals)",
                   liesBelowClipStore},
    StructureCheck{"the clip's folder stands directly in CLPR", hasFolderInClipStore},
    xdcam::kIsMp4,
};

std::optional<std::pair<std::int32_t, std::int32_t>> takeAndPiece(const FilePath& file) {
    const std::string name = clipName(file);
    const auto take = underscoreNumber(name, 1);
    const auto piece = underscoreNumber(name, 2);
    if (!take || !piece) return std::nullopt;
    return std::pair(*take, *piece);
}

/// The folder, empty.
void addEmptyFolder(ResetPlan& plan, const FilePath& folder) {
    using Kind = ResetStep::Kind;
    plan.push_back({.kind = Kind::remove, .path = folder});
    plan.push_back({.kind = Kind::makeFolder, .path = folder, .mustSucceed = false});
}

}  // namespace

std::unique_ptr<QRXSonyXDCAMExUtility> QRXSonyXDCAMExUtility::volumeUtility() {
    return std::make_unique<QRXSonyXDCAMExUtility>();
}

QRXSonyXDCAMExUtility& QRXSonyXDCAMExUtility::sharedInstance() {
    return sharedInstanceOf<QRXSonyXDCAMExUtility>();
}

std::span<const StructureCheck> QRXSonyXDCAMExUtility::structureChecks() const {
    return kClipChecks;
}

bool QRXSonyXDCAMExUtility::drivePathMatchesVolumeStructure(const FilePath& drive) const {
    return answerOr(false, "drivePathMatchesVolumeStructure",
                    [&] { return isRemovableDriveHolding(drive, kDriveItems); });
}

std::optional<std::vector<std::string>>
QRXSonyXDCAMExUtility::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::vector<std::string>{std::string(kClipStore)};
}

std::optional<ResetPlan> QRXSonyXDCAMExUtility::resetPlan(const FilePath& drive) const {
    using Kind = ResetStep::Kind;
    const FilePath root = joinedPath(drive, "BPAV");
    // Behind a link lies what is not on this drive.
    if (isLink(drive) || !isRealFolder(root)) return std::nullopt;
    ResetPlan plan;
    addEmptyFolder(plan, joinedPath(root, "CLPR"));
    addEmptyFolder(plan, joinedPath(root, "TAKR"));
    if (const FilePath backup = joinedPath(root, "MEDIAPRO.BAK"); itemExists(backup)) {
        plan.push_back({.kind = Kind::remove, .path = backup, .mustSucceed = false});
    }
    plan.push_back({.kind = Kind::removeXmlFollow,
                    .path = joinedPath(root, "CUEUP.XML"),
                    .argument = "history"});
    plan.push_back({.kind = Kind::removeXmlNode,
                    .path = joinedPath(root, "MEDIAPRO.XML"),
                    .argument = "Contents"});
    return plan;
}

bool QRXSonyXDCAMExUtility::pathContainsVideoFilesMatchingVolumeStructure(
    const FilePath& folder) const {
    return QRXFileSystemUtility::sharedInstance().directoryPathHasFilesContainingSubPath(
        folder, std::string(kClipStore), false, ".MP4");
}

FilePaths QRXSonyXDCAMExUtility::sortSpannedClipSeries(const FilePaths& files) const {
    return answerOr(files, "sortSpannedClipSeries", [&] { return byNameIgnoringCase(files); });
}

std::optional<std::string> QRXSonyXDCAMExUtility::spanPartnerIdentifierForPath(
    const FilePath& file) const {
    return firstCharacters(lastPathComponentView(file), kSpanKeyCharacters);
}

bool QRXSonyXDCAMExUtility::filesArePartOfTheSameSpanSeries(const FilePaths& files) const {
    if (files.size() < 2) return false;
    const auto key = spanPartnerIdentifierForPath(files.front());
    return key && std::all_of(files.begin(), files.end(), [&](const FilePath& file) {
               return filePathMatchesVolumeStructure(file) &&
                      spanPartnerIdentifierForPath(file) == key;
           });
}

FilePaths QRXSonyXDCAMExUtility::orderVolumeVideoFiles(const FilePaths& files) const {
    auto ordered = orderedByKey(files, takeAndPiece);
    return ordered ? std::move(*ordered) : QRXXDCAMUtility::orderVolumeVideoFiles(files);
}

std::string QRXSonyXDCAMExUtility::volumePartnerIdentifierForFilePath(const FilePath& file) const {
    return grandparentFolder(file);
}

bool QRXSonyXDCAMExUtility::filePathsAreVolumeSiblings(const FilePaths& files) const {
    return allShareOneKey(files, grandparentFolder);
}

}  // namespace qrx
