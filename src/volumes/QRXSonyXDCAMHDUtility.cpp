#include "volumes/QRXSonyXDCAMHDUtility.h"

#include <array>
#include <string_view>

#include "foundation/FolderListing.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/ClipNumbers.h"

namespace qrx {

namespace {

constexpr std::string_view kClipFolder = "/Clip/";
constexpr std::string_view kProxyFolder = "/Sub/";
constexpr std::string_view kClipSuffix = ".MXF";

// What counts here as "the MXF file does not say"; it says QRXVideoFrameRateUndefined, though.
constexpr std::uint64_t kNoFrameRate = 16;

CheckVerdict liesBelowClip(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(contains(path.path(), kClipFolder));
}

CheckVerdict isMxf(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.upperCased(), kClipSuffix));
}

constexpr std::array kClipChecks{
    StructureCheck{"the path leads through a folder Clip (with a capital C)", liesBelowClip},
    StructureCheck{"the file's name ends in .MXF", isMxf},
};

}  // namespace

std::unique_ptr<QRXSonyXDCAMHDUtility> QRXSonyXDCAMHDUtility::utility() {
    return std::make_unique<QRXSonyXDCAMHDUtility>();
}

QRXSonyXDCAMHDUtility& QRXSonyXDCAMHDUtility::sharedInstance() {
    return sharedInstanceOf<QRXSonyXDCAMHDUtility>();
}

std::span<const StructureCheck> QRXSonyXDCAMHDUtility::structureChecks() const {
    return kClipChecks;
}

std::optional<std::vector<std::string>>
QRXSonyXDCAMHDUtility::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::vector<std::string>{std::string(kClipFolder)};
}

bool QRXSonyXDCAMHDUtility::pathContainsVideoFilesMatchingVolumeStructure(
    const FilePath& folder) const {
    return QRXFileSystemUtility::sharedInstance().directoryPathHasFilesContainingSubPath(
        folder, std::string(kClipFolder), false, std::string(kClipSuffix));
}

QRXVideoFrameRate QRXSonyXDCAMHDUtility::framerateForVideoFile(const FilePath& file) const {
    const QRXVideoFrameRate rate = mxfUtility_.framerateForVideoFile(file);
    return rate != kNoFrameRate ? rate : QRXXDCAMUtility::framerateForVideoFile(file);
}

std::optional<std::string> QRXSonyXDCAMHDUtility::uniqueIdentifierForVideoFile(
    const FilePath& file) const {
    auto umid = mxfUtility_.umidForFilePath(file);
    return umid ? umid : QRXXDCAMUtility::uniqueIdentifierForVideoFile(file);
}

std::string QRXSonyXDCAMHDUtility::startTimecodeForVideoFile(const FilePath& file) const {
    std::string timecode = mxfUtility_.startTimecodeForVideoFile(file);
    if (timecode != QRXTimecodeUtility::defaultTimecode()) return timecode;
    return QRXXDCAMUtility::startTimecodeForVideoFile(file);
}

QRXMetadataWrapper QRXSonyXDCAMHDUtility::metadataWrapperForVideoFilePath(
    const FilePath& file) const {
    return answerOr(QRXMetadataWrapper(), "metadataWrapperForVideoFilePath", [&] {
        QRXMetadataWrapper metadata = QRXXDCAMUtility::metadataWrapperForVideoFilePath(file);
        metadata.replaceExistingKeysWithThoseInWrapper(
            mxfUtility_.metadataWrapperForVideoFilePath(file));
        return metadata;
    });
}

FilePaths QRXSonyXDCAMHDUtility::orderVolumeVideoFiles(const FilePaths& files) const {
    return QRXFileSystemUtility::sharedInstance().orderFilePathsByAscendingNumericValue(files);
}

std::optional<FilePath> QRXSonyXDCAMHDUtility::proxyPathForFullResolutionFile(
    const FilePath& file) const {
    return answerOr(std::optional<FilePath>{}, "proxyPathForFullResolutionFile",
                    [&]() -> std::optional<FilePath> {
                        const FilePath folder =
                            replaceAll(withoutLastPathComponent(file), kClipFolder, kProxyFolder);
                        const auto names = namesInFolder(folder);
                        if (!names || names->empty()) return std::nullopt;
                        const FilePath first = joinedPath(folder, names->front());
                        const bool isProxy = contains(first, clipName(file)) &&
                                             pathExtension(first) == pathExtension(file);
                        return isProxy ? std::optional(first) : std::nullopt;
                    });
}

}  // namespace qrx
