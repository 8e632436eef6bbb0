#include "volumes/QRXPanasonicP2Utility.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "foundation/FileQuestions.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"
#include "readers/QRXXmlUtility.h"
#include "volumes/ClipNumbers.h"
#include "volumes/DriveTest.h"
#include "volumes/KeyOrder.h"
#include "volumes/P2Rate.h"
#include "volumes/P2SpanOrder.h"

namespace qrx {

namespace {

constexpr std::string_view kVideoFolder = "/CONTENTS/VIDEO";
constexpr std::string_view kAudioFolder = "/CONTENTS/AUDIO";
constexpr std::string_view kInVideoFolder = "/CONTENTS/VIDEO/";
constexpr std::string_view kInAudioFolder = "/CONTENTS/AUDIO/";
constexpr std::string_view kClipSuffix = ".MXF";
constexpr std::string_view kMarker = "LASTCLIP.TXT";
constexpr std::array<std::string_view, 2> kDriveItems{"CONTENTS/VIDEO", kMarker};
constexpr std::array<std::string_view, 3> kIconExtensions{".jpg", ".jpeg", ".BMP"};
constexpr int kAudioChannels = 4;
constexpr std::size_t kNumberCharacters = 4;

CheckVerdict liesBelowVideoFolder(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(contains(path.path(), kInVideoFolder));
}

CheckVerdict standsInVideoFolder(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(containsInARow(path.path(), kInVideoFolder, path.fileName()));
}

CheckVerdict isMxf(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.upperCased(), kClipSuffix));
}

constexpr std::array kChecks{
    StructureCheck{"the path leads through a folder CONTENTS/VIDEO (written in capitals)",
                   liesBelowVideoFolder},
    StructureCheck{"the file stands directly in that folder", standsInVideoFolder},
    StructureCheck{"the file's name ends in .MXF", isMxf},
};

/// The folder beside the clip's.
FilePath siblingFolder(const FilePath& file, std::string_view folder) {
    return replaceAll(withoutLastPathComponent(file), kVideoFolder, folder);
}

std::optional<FilePath> iconOf(const FilePath& file) {
    if (!endsWith(withoutLastPathComponent(file), kVideoFolder)) {
        platform::systemLog().notice("No Suffix");
    }
    const FilePath stem = siblingFolder(file, "/CONTENTS/ICON/") + clipName(file);
    for (const std::string_view extension : kIconExtensions) {
        FilePath icon = stem;
        icon += extension;
        if (itemExists(icon)) return icon;
    }
    return std::nullopt;
}

std::optional<std::int32_t> cardNumber(const FilePath& file) {
    const auto start = firstCharacters(lastPathComponentView(file), kNumberCharacters);
    if (!start) return std::nullopt;
    const auto& files = QRXFileSystemUtility::sharedInstance();
    return int32Value(files.removeNonNumericsFromString(*start, false));
}

}  // namespace

std::unique_ptr<QRXPanasonicP2Utility> QRXPanasonicP2Utility::utility() {
    return std::make_unique<QRXPanasonicP2Utility>();
}

QRXPanasonicP2Utility& QRXPanasonicP2Utility::sharedInstance() {
    return sharedInstanceOf<QRXPanasonicP2Utility>();
}

// ---- paths and drives

std::span<const StructureCheck> QRXPanasonicP2Utility::structureChecks() const {
    return kChecks;
}

bool QRXPanasonicP2Utility::drivePathMatchesVolumeStructure(const FilePath& drive) const {
    return answerOr(false, "drivePathMatchesVolumeStructure",
                    [&] { return isRemovableDriveHolding(drive, kDriveItems); });
}

std::optional<std::string> QRXPanasonicP2Utility::rootOfUniquePathIdenifier() const {
    return "CONTENTS";
}

std::optional<std::vector<std::string>>
QRXPanasonicP2Utility::pathComponentsIndicatingTheVolumeHasBegun() const {
    return std::vector<std::string>{"/CONTENTS/"};
}

std::optional<ResetPlan> QRXPanasonicP2Utility::resetPlan(const FilePath& drive) const {
    using Kind = ResetStep::Kind;
    if (!drivePathMatchesVolumeStructure(drive)) return std::nullopt;
    const FilePath source = joinedPath(platform::services().resourceFolder, kMarker);
    // KEPT: a marker that does not come back is logged and no failure: the clips are gone all the
    // same.
    return ResetPlan{
        {.kind = Kind::clearFiles, .path = drive},
        // Once more, for what the system put there meanwhile.
        {.kind = Kind::clearFiles, .path = drive, .mustSucceed = false},
        {.kind = Kind::copyFile,
         .path = joinedPath(drive, kMarker),
         .argument = source,
         .mustSucceed = false,
         .logWhenArgumentExists = "File Exists",
         .logOnFailure = "LASTCLIP was not copied back"},
        {.kind = Kind::removeByTool,
         .path = joinedPath(drive, "._LASTCLIP.TXT"),
         .mustSucceed = false,
         .logOnFailure = "Spotlight files could not be removed"},
    };
}

bool QRXPanasonicP2Utility::pathContainsVideoFilesMatchingVolumeStructure(
    const FilePath& folder) const {
    return QRXFileSystemUtility::sharedInstance().directoryPathHasFilesContainingSubPath(
        folder, std::string(kVideoFolder), true, std::string(kClipSuffix));
}

bool QRXPanasonicP2Utility::fileIsP2Audio(const FilePath& file) const {
    return answerOr(false, "fileIsP2Audio", [&] {
        ExaminedPath path(file);
        return containsInARow(file, kInAudioFolder, path.fileName()) &&
               endsWith(path.upperCased(), kClipSuffix);
    });
}

// ---- files beside the clip

std::optional<FilePath> QRXPanasonicP2Utility::metadataFilePathForVideoFile(
    const FilePath& file) const {
    FilePath clipXml = joinedPath(siblingFolder(file, "/CONTENTS/CLIP"), clipName(file) + ".XML");
    if (!itemExists(clipXml)) return std::nullopt;
    return clipXml;
}

std::optional<FilePaths> QRXPanasonicP2Utility::audioFilesForVideoFile(const FilePath& file) const {
    const FilePath stem = joinedPath(siblingFolder(file, kAudioFolder), clipName(file));
    FilePaths sounds;
    for (int channel = 0; channel < kAudioChannels; ++channel) {
        FilePath sound = stem + "0" + std::to_string(channel) + ".MXF";
        if (itemExists(sound)) sounds.push_back(std::move(sound));
    }
    if (sounds.empty()) return std::nullopt;
    return sounds;
}

std::optional<FilePath> QRXPanasonicP2Utility::audioFileForMovie(const FilePath& file,
                                                                 std::string_view suffix) const {
    const FilePaths sounds = audioFilesForVideoFile(file).value_or(FilePaths{});
    const auto found = std::find_if(sounds.begin(), sounds.end(), [&](const FilePath& sound) {
        return endsWith(clipName(sound), suffix);
    });
    if (found == sounds.end()) return std::nullopt;
    return *found;
}

platform::Image QRXPanasonicP2Utility::posterImageForFilePath(
    const FilePath& file, const FilePath& imageOutputDirectory) const {
    return answerOr(platform::Image{}, "posterImageForFilePath", [&] {
        const bool isClip = filePathMatchesVolumeStructure(file) && contains(file, kInVideoFolder);
        const auto icon = isClip ? iconOf(file) : std::nullopt;
        if (!icon) return QRXMXFUtility::posterImageForFilePath(file, imageOutputDirectory);
        return platform::imageCodec().load(*icon).value_or(platform::Image{});
    });
}

// ---- what the clip XML says

std::optional<std::string> QRXPanasonicP2Utility::clipXmlText(const FilePath& file,
                                                              std::string_view tag) const {
    const auto clipXml = metadataFilePathForVideoFile(file);
    return clipXml ? QRXXmlUtility::findXmlTagInfo(tag, *clipXml) : std::nullopt;
}

QRXVideoFrameRate QRXPanasonicP2Utility::framerateForVideoFile(const FilePath& file) const {
    return answerOr(QRXVideoFrameRateUndefined, "framerateForVideoFile", [&] {
        if (!metadataFilePathForVideoFile(file)) return QRXMXFUtility::framerateForVideoFile(file);
        const auto editUnit = clipXmlText(file, "<EditUnit>");
        return p2FrameRate(editUnit, editUnit ? std::nullopt : clipXmlText(file, "<FrameRate"));
    });
}

std::optional<std::string> QRXPanasonicP2Utility::uniqueIdentifierForVideoFile(
    const FilePath& file) const {
    if (!metadataFilePathForVideoFile(file)) return clipName(file);
    return clipXmlText(file, "<GlobalClipID>");
}

std::string QRXPanasonicP2Utility::userClipNameForVideoFile(const FilePath& file) const {
    const auto name = clipXmlText(file, "<UserClipName>");
    return name ? *name : clipName(file);
}

std::string QRXPanasonicP2Utility::startTimecodeForVideoFile(const FilePath& file) const {
    const auto timecode = clipXmlText(file, "<StartTimecode>");
    return timecode ? *timecode : QRXMXFUtility::startTimecodeForVideoFile(file);
}

bool QRXPanasonicP2Utility::videoFileIsDropFrame(const FilePath& file) const {
    if (!metadataFilePathForVideoFile(file)) return QRXMXFUtility::videoFileIsDropFrame(file);
    const auto frameRate = clipXmlText(file, "<FrameRate");
    // KEPT: a clip XML that does not name its rate counts as drop frame.
    return !frameRate || contains(*frameRate, "true");
}

// ---- spanned recordings and order

bool QRXPanasonicP2Utility::fileIsInASpannedSeries(const FilePath& file) const {
    return clipXmlText(file, "<Top>").has_value();
}

std::optional<std::string> QRXPanasonicP2Utility::spanPartnerIdentifierForPath(
    const FilePath& file) const {
    return clipXmlText(file, "<GlobalShotID>");
}

bool QRXPanasonicP2Utility::filesArePartOfTheSameSpanSeries(const FilePaths& files) const {
    if (files.size() < 2) return false;
    const auto shot = spanPartnerIdentifierForPath(files.front());
    return shot && std::all_of(files.begin(), files.end(), [&](const FilePath& file) {
               return spanPartnerIdentifierForPath(file) == shot;
           });
}

bool QRXPanasonicP2Utility::filesArePartOfTheSameSpanSeries(const FilePath& path,
                                                            const FilePath& path2) const {
    return filePathMatchesVolumeStructure(path) && filePathMatchesVolumeStructure(path2) &&
           filesArePartOfTheSameSpanSeries(FilePaths{path, path2});
}

FilePaths QRXPanasonicP2Utility::sortSpannedClipSeries(const FilePaths& files) const {
    return answerOr(files, "sortSpannedClipSeries", [&] {
        std::vector<P2SpanPiece> pieces;
        pieces.reserve(files.size());
        for (const FilePath& file : files) {
            const auto clipXml = metadataFilePathForVideoFile(file);
            auto piece = clipXml ? p2SpanPiece(file, *clipXml) : std::nullopt;
            if (!piece) return files;
            pieces.push_back(std::move(*piece));
        }
        return p2PlayingOrder(pieces).value_or(files);
    });
}

FilePaths QRXPanasonicP2Utility::orderVolumeVideoFiles(const FilePaths& files) const {
    return answerOr(files, "orderVolumeVideoFiles", [&] {
        auto ordered = orderedByKey(files, cardNumber);
        return ordered ? *ordered : QRXMXFUtility::orderVolumeVideoFiles(files);
    });
}

}  // namespace qrx
