#include "volumes/QRXJVCMP4Utility.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "volumes/ClipNumbers.h"
#include "volumes/DriveTest.h"
#include "volumes/KeyOrder.h"
#include "volumes/ResetWalk.h"
#include "volumes/Siblings.h"
#include "volumes/XdcamChecks.h"

namespace qrx {

namespace {

constexpr std::string_view kClipStore = "PRIVATE/JVC/BPAV/CLPR/";
constexpr std::array<std::string_view, 4> kDriveItems{
    "PRIVATE/JVC/BPAV/CLPR",
    "PRIVATE/JVC/BPAV/TAKR",
    "PRIVATE/JVC/BPAV/CUEUP.XML",
    "PRIVATE/JVC/BPAV/MEDIAPRO.XML",
};
constexpr std::array<std::string_view, 5> kKeptFolders{"PRIVATE", "JVC", "BPAV", "CLPR", "TAKR"};

CheckVerdict liesBelowClipStore(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(contains(path.path(), kClipStore));
}

CheckVerdict hasFolderInClipStore(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return xdcam::clipFolderStandsIn(kClipStore, path);
}

constexpr std::array kClipChecks{
    StructureCheck{"the path leads through a folder PRIVATE/JVC/BPAV/CLPR (written in capitals)",
                   liesBelowClipStore},
    StructureCheck{"the clip's folder stands directly in CLPR", hasFolderInClipStore},
    xdcam::kIsMp4,
};

/// A link is an item of its own, whatever its name: it goes, and its target is not touched.
std::optional<ResetStep> stepFor(const ResetItem& item) {
    using Kind = ResetStep::Kind;
    if (!item.exists) return std::nullopt;
    const bool isFile = item.kind == EntryKind::other;
    if (item.kind == EntryKind::folder &&
        std::find(kKeptFolders.begin(), kKeptFolders.end(), item.name) != kKeptFolders.end()) {
        return std::nullopt;
    }
    if (isFile && item.name == "CUEUP.XML") {
        return ResetStep{.kind = Kind::removeXmlFollow, .path = item.path, .argument = "history"};
    }
    if (isFile && item.name == "MEDIAPRO.XML") {
        return ResetStep{.kind = Kind::removeXmlNode, .path = item.path, .argument = "Contents"};
    }
    // KEPT: wherever the item stands; the drive is reset as a whole.
    return ResetStep{.kind = Kind::remove, .path = item.path};
}

}  // namespace

std::unique_ptr<QRXJVCMP4Utility> QRXJVCMP4Utility::volumeUtility() {
    return std::make_unique<QRXJVCMP4Utility>();
}

QRXJVCMP4Utility& QRXJVCMP4Utility::sharedInstance() {
    return sharedInstanceOf<QRXJVCMP4Utility>();
}

std::span<const StructureCheck> QRXJVCMP4Utility::structureChecks() const {
    return kClipChecks;
}

bool QRXJVCMP4Utility::drivePathMatchesVolumeStructure(const FilePath& drive) const {
    return answerOr(false, "drivePathMatchesVolumeStructure",
                    [&] { return isRemovableDriveHolding(drive, kDriveItems); });
}

std::optional<std::vector<std::string>>
QRXJVCMP4Utility::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::vector<std::string>{"/PRIVATE/JVC/BPAV/CLPR/"};
}

std::optional<ResetPlan> QRXJVCMP4Utility::resetPlan(const FilePath& drive) const {
    return planForItemsBelow(drive, stepFor);
}

bool QRXJVCMP4Utility::pathContainsVideoFilesMatchingVolumeStructure(const FilePath& folder) const {
    return QRXFileSystemUtility::fileSystemUtility().directoryPathHasFilesContainingSubPath(
        folder, "/PRIVATE/JVC/BPAV/CLPR/", true, ".MP4");
}

FilePaths QRXJVCMP4Utility::sortSpannedClipSeries(const FilePaths& files) const {
    return answerOr(files, "sortSpannedClipSeries", [&] { return byNameIgnoringCase(files); });
}

std::optional<std::string> QRXJVCMP4Utility::spanPartnerIdentifierForPath(
    const FilePath& file) const {
    return pieceSeries(file);
}

bool QRXJVCMP4Utility::filesArePartOfTheSameSpanSeries(const FilePaths& files) const {
    if (files.size() < 2) return false;
    const std::string series = pieceSeries(files.front());
    return std::all_of(files.begin(), files.end(), [&](const FilePath& file) {
        return filePathMatchesVolumeStructure(file) && pieceSeries(file) == series;
    });
}

FilePaths QRXJVCMP4Utility::orderVolumeVideoFiles(const FilePaths& files) const {
    auto ordered = orderedByKey(files, clipAndPiece);
    return ordered ? std::move(*ordered) : QRXXDCAMUtility::orderVolumeVideoFiles(files);
}

std::string QRXJVCMP4Utility::volumePartnerIdentifierForFilePath(const FilePath& file) const {
    return grandparentFolder(file);
}

bool QRXJVCMP4Utility::filePathsAreVolumeSiblings(const FilePaths& files) const {
    return allShareOneKey(files, grandparentFolder);
}

}  // namespace qrx
