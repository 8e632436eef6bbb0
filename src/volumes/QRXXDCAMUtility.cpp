#include "volumes/QRXXDCAMUtility.h"

#include "foundation/FileQuestions.h"
#include "foundation/FolderListing.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "readers/QRXXmlUtility.h"
#include "timecode/QRXTimecodeUtility.h"

namespace qrx {

namespace {

constexpr std::string_view kVideoFrame = "<VideoFrame";
constexpr std::string_view kLtcChange = "<LtcChange frameCount=";
constexpr std::string_view kTargetMaterial = "<TargetMaterial umidRef";

bool isSidecarOf(const FilePath& path, std::string_view clipKey) {
    return contains(path, clipKey) && (endsWith(path, ".XML") || endsWith(path, ".xml"));
}

std::optional<FilePath> sidecarOf(const FilePath& clip) {
    // KEPT: the key ends at the first "." of the whole path; below a folder with a "." in its name
    // every sidecar of the clip's folder bears it.
    const std::string clipKey = split(clip, ".").front();
    const auto lastSlash = clip.rfind('/');
    if (lastSlash == FilePath::npos) return std::nullopt;
    const FilePath folder = clip.substr(0, lastSlash);
    for (const std::string& name : namesInFolder(folder).value_or(FilePaths{})) {
        FilePath path = joinedPath(folder, name);
        if (!isSidecarOf(path, clipKey)) continue;
        if (!itemExists(path)) return std::nullopt;
        return path;
    }
    return std::nullopt;
}

}  // namespace

std::unique_ptr<QRXXDCAMUtility> QRXXDCAMUtility::utility() {
    return std::make_unique<QRXXDCAMUtility>();
}

QRXXDCAMUtility& QRXXDCAMUtility::sharedInstance() {
    return sharedInstanceOf<QRXXDCAMUtility>();
}

std::optional<std::string> QRXXDCAMUtility::rootOfUniquePathIdenifier() const {
    return "BPAV";
}

std::optional<FilePath> QRXXDCAMUtility::metadataFilePathForVideoFile(const FilePath& file) const {
    return answerOr(std::optional<FilePath>{}, "metadataFilePathForVideoFile",
                    [&] { return sidecarOf(file); });
}

std::optional<std::string> QRXXDCAMUtility::xmlValueForFile(const FilePath& file,
                                                            std::string_view tag,
                                                            std::string_view descriptor,
                                                            std::string_view valueLine) const {
    return answerOr(
        std::optional<std::string>{}, "xmlValueForFile", [&]() -> std::optional<std::string> {
            const auto sidecar = metadataFilePathForVideoFile(file);
            if (!sidecar) return std::nullopt;
            const auto node = QRXXmlUtility::findXmlTagInfo(tag, *sidecar, std::string(descriptor));
            return QRXXmlUtility::stripValueFromInfo(node, valueLine);
        });
}

QRXVideoFrameRate QRXXDCAMUtility::framerateForVideoFile(const FilePath& file) const {
    auto rate = xmlValueForFile(file, kVideoFrame, "formatFps=", "formatFps=");
    if (!rate) rate = xmlValueForFile(file, "<LtcChangeTable", "tcFps=", "tcFps=");
    return rate ? QRXTimecodeUtility::videoFrameRateFromFrameRateDescription(*rate)
                : QRXHDMediaVolumeUtilityObject::framerateForVideoFile(file);
}

std::optional<std::string> QRXXDCAMUtility::uniqueIdentifierForVideoFile(
    const FilePath& file) const {
    auto umid = xmlValueForFile(file, kTargetMaterial, "umidRef", "umidRef");
    return umid ? umid : QRXHDMediaVolumeUtilityObject::uniqueIdentifierForVideoFile(file);
}

std::string QRXXDCAMUtility::startTimecodeForVideoFile(const FilePath& file) const {
    const auto packed = xmlValueForFile(file, kLtcChange, "status=\"increment\"", "value=\"");
    const auto timecode =
        packed ? QRXTimecodeUtility::reverseTimecodeString(*packed) : std::nullopt;
    return timecode ? *timecode : QRXHDMediaVolumeUtilityObject::startTimecodeForVideoFile(file);
}

std::optional<std::string> QRXXDCAMUtility::endTimecodeForVideoFile(const FilePath& file) const {
    const auto packed = xmlValueForFile(file, kLtcChange, "status=\"end\"", "value=\"");
    auto timecode = packed ? QRXTimecodeUtility::reverseTimecodeString(*packed) : std::nullopt;
    return timecode ? timecode : QRXHDMediaVolumeUtilityObject::endTimecodeForVideoFile(file);
}

QRXMetadataWrapper QRXXDCAMUtility::metadataWrapperForVideoFilePath(const FilePath& file) const {
    return answerOr(QRXMetadataWrapper(), "metadataWrapperForVideoFilePath", [&] {
        QRXMetadataWrapper metadata;
        if (!metadataFilePathForVideoFile(file)) return metadata;
        // An absent value changes nothing.
        const auto set = [&](std::string_view identifier, const MetadataValue& value) {
            metadata.replaceValueForKeyEntryWithIdentifier(identifier, value);
        };
        set(QRXMediaMetadataVideoFileTitleKey, lastPathComponent(file));
        set(QRXMediaMetadataUMIDKey, uniqueIdentifierForVideoFile(file));
        set(QRXMediaMetadataStartTimecodeKey, startTimecodeForVideoFile(file));
        set(QRXMediaMetadataEndTimecodeKey, endTimecodeForVideoFile(file));
        set(QRXMediaMetadataCreationDateKey,
            xmlValueForFile(file, "<CreationDate", "value=", "value="));
        set(QRXMediaMetadataVideoCodecTitleKey,
            xmlValueForFile(file, kVideoFrame, "videoCodec=", "videoCodec="));
        return metadata;
    });
}

}  // namespace qrx
