#include "volumes/QRXHDMediaVolumeUtilityObject.h"

#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "readers/QRXFFmpegObject.h"
#include "readers/QRXFFmpegTerminalWrapper.h"
#include "readers/QRXQuickTimeImageUtility.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/FFmpegStill.h"
#include "volumes/Siblings.h"

namespace qrx {

std::unique_ptr<QRXHDMediaVolumeUtilityObject> QRXHDMediaVolumeUtilityObject::volumeUtility() {
    return std::make_unique<QRXHDMediaVolumeUtilityObject>();
}

QRXHDMediaVolumeUtilityObject& QRXHDMediaVolumeUtilityObject::sharedInstance() {
    return sharedInstanceOf<QRXHDMediaVolumeUtilityObject>();
}

std::span<const StructureCheck> QRXHDMediaVolumeUtilityObject::structureChecks() const {
    return {};
}

StructureFinding QRXHDMediaVolumeUtilityObject::findStructure(ExaminedPath& path) const {
    return answerOr(StructureFinding{}, "findStructure",
                    [&] { return walkStructureChecks(structureChecks(), *this, path); });
}

bool QRXHDMediaVolumeUtilityObject::examinedPathMatches(ExaminedPath& path) const {
    return findStructure(path).claimed;
}

bool QRXHDMediaVolumeUtilityObject::filePathMatchesVolumeStructure(const FilePath& file) const {
    ExaminedPath path(file);
    return examinedPathMatches(path);
}

bool QRXHDMediaVolumeUtilityObject::drivePathMatchesVolumeStructure(const FilePath&) const {
    return false;
}

std::optional<std::string> QRXHDMediaVolumeUtilityObject::rootOfUniquePathIdenifier() const {
    return std::nullopt;
}

std::optional<ResetPlan> QRXHDMediaVolumeUtilityObject::resetPlan(const FilePath&) const {
    return std::nullopt;
}

bool QRXHDMediaVolumeUtilityObject::formatDriveToMatchValidVolumeStructure(
    const FilePath& drive) const {
    return answerOr(false, "formatDriveToMatchValidVolumeStructure", [&] {
        const auto plan = resetPlan(drive);
        return plan && carryOut(*plan);
    });
}

QRXVideoFrameRate QRXHDMediaVolumeUtilityObject::framerateForVideoFile(const FilePath& file) const {
    const QRXVideoFrameRate unknown = QRXTimecodeUtility::defaultVideoFrameRate();
    return answerOr(unknown, "framerateForVideoFile", [&] {
        const auto rate = QRXFFmpegTerminalWrapper().metadataWrapperForVideoFile(file).valueForKey(
            QRXMediaMetadataVideoFrameRate);
        return rate ? QRXTimecodeUtility::videoFrameRateFromFrameRateDescription(*rate) : unknown;
    });
}

std::optional<std::string> QRXHDMediaVolumeUtilityObject::uniqueIdentifierForVideoFile(
    const FilePath& file) const {
    return withoutPathExtension(lastPathComponentView(file));
}

bool QRXHDMediaVolumeUtilityObject::pathContainsVideoFilesMatchingVolumeStructure(
    const FilePath&) const {
    return false;
}

platform::Image QRXHDMediaVolumeUtilityObject::posterImageForFilePath(
    const FilePath& file, const FilePath& imageOutputDirectory) const {
    return answerOr(platform::Image{}, "posterImageForFilePath", [&] {
        // A fault of the thumbnailer is none of this operation: the image utility drops it.
        auto thumbnail =
            QRXQuickTimeImageUtility::qtImageUtility().posterImageForFilePath(file, true);
        if (thumbnail && !thumbnail->isEmpty()) return std::move(*thumbnail);
        return ffmpegStill(file, imageOutputDirectory);
    });
}

QRXMetadataWrapper QRXHDMediaVolumeUtilityObject::metadataWrapperForVideoFilePath(
    const FilePath&) const {
    return {};
}

std::optional<FilePaths> QRXHDMediaVolumeUtilityObject::audioFilesForVideoFile(
    const FilePath&) const {
    return FilePaths{};
}

std::optional<FilePath> QRXHDMediaVolumeUtilityObject::metadataFilePathForVideoFile(
    const FilePath&) const {
    return std::nullopt;
}

std::string QRXHDMediaVolumeUtilityObject::startTimecodeForVideoFile(const FilePath&) const {
    return QRXTimecodeUtility::defaultTimecode();
}

std::optional<std::string> QRXHDMediaVolumeUtilityObject::endTimecodeForVideoFile(
    const FilePath&) const {
    return std::nullopt;
}

bool QRXHDMediaVolumeUtilityObject::videoFileIsDropFrame(const FilePath&) const {
    return false;
}

bool QRXHDMediaVolumeUtilityObject::clipSpanningSupported() const {
    return false;
}

bool QRXHDMediaVolumeUtilityObject::fileIsInASpannedSeries(const FilePath&) const {
    return false;
}

FilePaths QRXHDMediaVolumeUtilityObject::sortSpannedClipSeries(const FilePaths& files) const {
    return files;
}

std::optional<std::string> QRXHDMediaVolumeUtilityObject::spanPartnerIdentifierForPath(
    const FilePath&) const {
    return std::nullopt;
}

bool QRXHDMediaVolumeUtilityObject::filesArePartOfTheSameSpanSeries(const FilePaths&) const {
    return false;
}

FilePaths QRXHDMediaVolumeUtilityObject::orderVolumeVideoFiles(const FilePaths& files) const {
    return QRXFileSystemUtility::sharedInstance().orderFilePathsByCreationDate(files);
}

std::string QRXHDMediaVolumeUtilityObject::volumePartnerIdentifierForFilePath(
    const FilePath& file) const {
    return withoutLastPathComponent(file);
}

bool QRXHDMediaVolumeUtilityObject::filePathsAreVolumeSiblings(const FilePaths& files) const {
    return allShareOneKey(files,
                          [](const FilePath& file) { return withoutLastPathComponent(file); });
}

bool QRXHDMediaVolumeUtilityObject::filePathExtensionIsValid(const FilePath& file) const {
    return answerOr(true, "filePathExtensionIsValid",
                    [&] { return !QRXFFmpegObject::filePathHasInvalidVideoFileExtension(file); });
}

FilePath QRXHDMediaVolumeUtilityObject::sourceFilePathForReferenceFile(const FilePath& file) const {
    return file;
}

std::optional<std::vector<std::string>>
QRXHDMediaVolumeUtilityObject::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::nullopt;
}

bool QRXHDMediaVolumeUtilityObject::reformatDrivePath(const FilePath&) const {
    return false;
}

std::string QRXHDMediaVolumeUtilityObject::defaultVolumeParentDirectoryForFileSystemPath(
    const FilePath& path) const {
    return lastPathComponent(withoutLastPathComponent(path));
}

}  // namespace qrx
