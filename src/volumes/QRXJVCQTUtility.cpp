#include "volumes/QRXJVCQTUtility.h"

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
#include "readers/QRXXmlUtility.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/ClipNumbers.h"
#include "volumes/DriveTest.h"
#include "volumes/JvcTimecode.h"
#include "volumes/KeyOrder.h"
#include "volumes/ResetWalk.h"

namespace qrx {

namespace {

constexpr std::string_view kClipFolder = "PRIVATE/JVC/CQAV/CLIP/";
constexpr std::string_view kClipSuffix = ".MOV";
constexpr std::string_view kSidecarSuffix = ".XML";
constexpr std::string_view kIndexName = "MEDIAINF.XML";
constexpr std::string_view kIndexedClips = "ClipInfo";
constexpr std::array<std::string_view, 5> kFolderNames{"PRIVATE", "JVC", "CQAV", "CLIP", "INFO"};
constexpr std::array<std::string_view, 4> kDriveItems{
    "PRIVATE/JVC/CQAV/CLIP",
    "PRIVATE/JVC/CQAV/INFO",
    "PRIVATE/JVC/CQAV/MEDIAINF.BAK",
    "PRIVATE/JVC/CQAV/MEDIAINF.XML",
};

CheckVerdict standsInClipFolder(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(containsInARow(path.path(), kClipFolder, path.fileName()));
}

CheckVerdict isMovByName(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.upperCased(), kClipSuffix));
}

constexpr std::array kClipChecks{
    StructureCheck{"the file stands in a folder PRIVATE/JVC/CQAV/CLIP", standsInClipFolder},
    StructureCheck{"the file's name ends in .MOV", isMovByName},
};

/// A link is an item of its own, whatever its name: it goes, and its target is not touched.
std::optional<ResetStep> stepFor(const ResetItem& item) {
    using Kind = ResetStep::Kind;
    if (!item.exists) return std::nullopt;
    if (item.kind == EntryKind::folder) {
        const bool stays =
            std::find(kFolderNames.begin(), kFolderNames.end(), item.name) != kFolderNames.end();
        if (stays) return std::nullopt;
    } else if (item.kind == EntryKind::other && item.name == kIndexName) {
        return ResetStep{.kind = Kind::removeXmlFollow,
                         .path = item.path,
                         .argument = std::string(kIndexedClips)};
    }
    return ResetStep{.kind = Kind::remove, .path = item.path};
}

/// The text of the sidecar's <TimeCode> tag that states a start.
std::optional<std::string> startTag(const FilePath& sidecar) {
    return QRXXmlUtility::findXmlTagInfo(R"(<TimeCode startTc=")", sidecar,
                                         std::string(R"(startTc=")"));
}

}  // namespace

std::unique_ptr<QRXJVCQTUtility> QRXJVCQTUtility::volumeUtility() {
    return std::make_unique<QRXJVCQTUtility>();
}

QRXJVCQTUtility& QRXJVCQTUtility::sharedInstance() {
    return sharedInstanceOf<QRXJVCQTUtility>();
}

std::span<const StructureCheck> QRXJVCQTUtility::structureChecks() const {
    return kClipChecks;
}

bool QRXJVCQTUtility::drivePathMatchesVolumeStructure(const FilePath& drive) const {
    return answerOr(false, "drivePathMatchesVolumeStructure",
                    [&] { return isRemovableDriveHolding(drive, kDriveItems); });
}

std::optional<std::string> QRXJVCQTUtility::rootOfUniquePathIdenifier() const {
    return "CQAV";
}

std::optional<std::vector<std::string>> QRXJVCQTUtility::pathComponentsIndicatingTheVolumeHasBegun()
    const {
    return std::vector<std::string>{"/PRIVATE/JVC/CQAV/CLIP/"};
}

std::optional<ResetPlan> QRXJVCQTUtility::resetPlan(const FilePath& drive) const {
    return planForItemsBelow(drive, stepFor);
}

bool QRXJVCQTUtility::pathContainsVideoFilesMatchingVolumeStructure(const FilePath& folder) const {
    return answerOr(false, "pathContainsVideoFilesMatchingVolumeStructure", [&] {
        return QRXFileSystemUtility::sharedInstance().directoryPathHasFilesContainingSubPath(
            folder, "/PRIVATE/JVC/CQAV/CLIP", true, std::string(kClipSuffix));
    });
}

std::optional<FilePath> QRXJVCQTUtility::metadataFilePathForVideoFile(const FilePath& file) const {
    return answerOr(std::optional<FilePath>(), "metadataFilePathForVideoFile", [&] {
        const std::string name = lastPathComponent(file);
        // KEPT: every "CLIP" above the file becomes "INFO", in the card's own name too, so the
        // sidecar of a card called CLIP1 is sought on one called INFO1.
        FilePath sidecar = replaceAll(replaceAll(file, name, ""), "CLIP", "INFO");
        sidecar += replaceAllIgnoringCase(name, kClipSuffix, kSidecarSuffix);
        return itemExists(sidecar) ? std::optional(sidecar) : std::nullopt;
    });
}

std::optional<std::string> QRXJVCQTUtility::uniqueIdentifierForVideoFile(
    const FilePath& file) const {
    return answerOr(QRXQTUtility::uniqueIdentifierForVideoFile(file),
                    "uniqueIdentifierForVideoFile", [&] {
                        std::optional<std::string> umid;
                        if (const auto sidecar = metadataFilePathForVideoFile(file)) {
                            umid = QRXXmlUtility::stripValueFromInfo(
                                QRXXmlUtility::findXmlTagInfo("<TargetClip name=", *sidecar,
                                                              std::string("umid=")),
                                "umid=");
                        }
                        return umid ? umid : QRXQTUtility::uniqueIdentifierForVideoFile(file);
                    });
}

std::string QRXJVCQTUtility::startTimecodeForVideoFile(const FilePath& file) const {
    const std::string unknown = QRXTimecodeUtility::defaultTimecode();
    return answerOr(unknown, "startTimecodeForVideoFile", [&] {
        const auto sidecar = metadataFilePathForVideoFile(file);
        const auto tag = sidecar ? startTag(*sidecar) : std::nullopt;
        return tag ? timecodeInJvcTag(*tag).value_or(unknown) : unknown;
    });
}

bool QRXJVCQTUtility::videoFileIsDropFrame(const FilePath& file) const {
    return answerOr(false, "videoFileIsDropFrame", [&] {
        const auto sidecar = metadataFilePathForVideoFile(file);
        if (!sidecar) return false;
        const auto tag = QRXXmlUtility::findXmlTagInfo("<TimeCode", *sidecar);
        return tag && !contains(*tag, "true");
    });
}

std::optional<std::string> QRXJVCQTUtility::spanPartnerIdentifierForPath(
    const FilePath& file) const {
    return pieceSeries(file);
}

FilePaths QRXJVCQTUtility::sortSpannedClipSeries(const FilePaths& files) const {
    if (files.size() < 2) return files;
    return answerOr(files, "sortSpannedClipSeries", [&] {
        const auto byPiece = [](const FilePath& file) {
            return underscoreNumber(lastPathComponentView(file), 1);
        };
        return orderedByKey(files, byPiece).value_or(files);
    });
}

bool QRXJVCQTUtility::filesArePartOfTheSameSpanSeries(const FilePaths& files) const {
    if (files.size() < 2) return false;
    return answerOr(false, "filesArePartOfTheSameSpanSeries", [&] {
        const std::string series = pieceSeries(files.front());
        return std::all_of(files.begin(), files.end(), [&](const FilePath& file) {
            return filePathMatchesVolumeStructure(file) && pieceSeries(file) == series;
        });
    });
}

FilePaths QRXJVCQTUtility::orderVolumeVideoFiles(const FilePaths& files) const {
    auto ordered = orderedByKey(files, clipAndPiece);
    return ordered ? std::move(*ordered) : QRXQTUtility::orderVolumeVideoFiles(files);
}

}  // namespace qrx
