#include "volumes/QRXAVCHDUtility.h"

#include <array>

#include "foundation/FileQuestions.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "volumes/AvchdChecks.h"
#include "volumes/DriveReset.h"
#include "volumes/DriveTest.h"

namespace qrx {

namespace {

constexpr std::array kClipChecks{
    avchd::kLiesBelowStreamFolder,
    avchd::kStandsInStreamFolder,
    avchd::kIsTransportStream,
};

constexpr std::array<std::string_view, 5> kDriveItems{
    "PRIVATE/AVCHD/BDMV/STREAM",    "PRIVATE/AVCHD/BDMV/PLAYLIST",     "PRIVATE/AVCHD/BDMV/CLIPINF",
    "PRIVATE/AVCHD/BDMV/INDEX.BDM", "PRIVATE/AVCHD/BDMV/MOVIEOBJ.BDM",
};

constexpr std::string_view kValueMark = "value=";

}  // namespace

std::unique_ptr<QRXAVCHDUtility> QRXAVCHDUtility::utility() {
    return std::make_unique<QRXAVCHDUtility>();
}

QRXAVCHDUtility& QRXAVCHDUtility::sharedInstance() {
    return sharedInstanceOf<QRXAVCHDUtility>();
}

std::span<const StructureCheck> QRXAVCHDUtility::structureChecks() const {
    return kClipChecks;
}

std::span<const std::string_view> QRXAVCHDUtility::driveItems() const {
    return kDriveItems;
}

bool QRXAVCHDUtility::drivePathMatchesVolumeStructure(const FilePath& drive) const {
    return answerOr(false, "drivePathMatchesVolumeStructure",
                    [&] { return isRemovableDriveHolding(drive, driveItems()); });
}

std::optional<std::string> QRXAVCHDUtility::rootOfUniquePathIdenifier() const {
    return "/PRIVATE/";
}

std::optional<std::vector<std::string>> QRXAVCHDUtility::pathComponentsIndicatingTheVolumeHasBegun()
    const {
    return std::vector<std::string>{"/PRIVATE/"};
}

std::optional<ResetPlan> QRXAVCHDUtility::resetPlan(const FilePath& drive) const {
    if (isLink(drive)) return std::nullopt;
    // KEPT: where there is nothing to list, a missing drive included, there is nothing to fail.
    return planToRemoveEveryEntry(drive);
}

bool QRXAVCHDUtility::pathContainsVideoFilesMatchingVolumeStructure(const FilePath& folder) const {
    return QRXFileSystemUtility::sharedInstance().directoryPathHasFilesContainingSubPath(
        folder, "/AVCHD/BDMV/STREAM", true, ".MTS");
}

std::optional<FilePath> QRXAVCHDUtility::metadataFilePathForVideoFile(const FilePath& file) const {
    return clipFileForAVCHDVideoFile(file);
}

FilePaths QRXAVCHDUtility::orderVolumeVideoFiles(const FilePaths& files) const {
    return QRXFileSystemUtility::sharedInstance().orderFilePathsByAscendingNumericValue(files);
}

std::optional<FilePath> QRXAVCHDUtility::clipFileForAVCHDVideoFile(const FilePath& file) const {
    const FilePath folder =
        replaceAll(withoutLastPathComponent(file), "/BDMV/STREAM", "/BDMV/CLIPINF");
    const std::string clipName = withoutPathExtension(lastPathComponentView(file));
    auto information =
        QRXFileSystemUtility::sharedInstance().firstFileMatchingPattern(clipName, folder);
    if (!information || !itemExists(*information)) return std::nullopt;
    return information;
}

std::optional<FilePath> QRXAVCHDUtility::avchdXmlFileFromPlaylistFile(const FilePath&) const {
    return std::nullopt;
}

std::optional<std::string> QRXAVCHDUtility::avchdValueFromTag(std::string_view tag) const {
    const auto mark = findIgnoringCase(tag, kValueMark);
    if (!mark) return std::nullopt;
    const std::string unmarked = replaceAllIgnoringCase(tag.substr(*mark), kValueMark, "");
    std::string value = replaceAll(unmarked, "\"", "");
    if (contains(upperCased(value), "UNDEFINED")) return std::nullopt;
    return value;
}

}  // namespace qrx
