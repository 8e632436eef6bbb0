#include "volumes/QRXCanonXFUtility.h"

#include <array>
#include <string_view>

#include "foundation/FileQuestions.h"
#include "foundation/FolderListing.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "volumes/Siblings.h"

namespace qrx {

namespace {

constexpr std::string_view kClipFolder = "/CONTENTS/CLIPS";
constexpr std::string_view kClipSuffix = ".MXF";
constexpr std::string_view kNamePiece = "XF";
constexpr std::string_view kSidecarSuffix = ".XML";

CheckVerdict liesBelowClipFolder(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(contains(path.upperCased(), kClipFolder));
}

CheckVerdict isMxf(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.upperCased(), kClipSuffix));
}

CheckVerdict nameHoldsXf(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    // KEPT: the check can never reject what passed the suffix check; it is part of the layout's
    // description all the same.
    return passesIf(contains(lastPathComponentView(path.upperCased()), kNamePiece));
}

constexpr std::array kChecks{
    StructureCheck{"the path leads through CONTENTS and a folder whose name begins with CLIPS",
                   liesBelowClipFolder},
    StructureCheck{"the file's name ends in .MXF", isMxf},
    StructureCheck{"the file's name contains XF", nameHoldsXf},
};

bool isSidecarName(const std::string& name, const std::string& clipName) {
    return name != clipName && endsWith(upperCased(name), kSidecarSuffix) &&
           contains(clipName, withoutPathExtension(name));
}

std::optional<FilePath> sidecarOf(const FilePath& clip) {
    const FilePath folder = withoutLastPathComponent(clip);
    const std::string clipName = lastPathComponent(clip);
    for (const std::string& name : namesInFolder(folder).value_or(FilePaths{})) {
        if (!isSidecarName(name, clipName)) continue;
        // KEPT: a file of that name in the process's current folder comes first, and the answer is
        // then the bare name.
        if (itemExists(name)) return name;
        if (FilePath path = joinedPath(folder, name); itemExists(path)) return path;
    }
    return std::nullopt;
}

}  // namespace

std::unique_ptr<QRXCanonXFUtility> QRXCanonXFUtility::utility() {
    return std::make_unique<QRXCanonXFUtility>();
}

QRXCanonXFUtility& QRXCanonXFUtility::sharedInstance() {
    return sharedInstanceOf<QRXCanonXFUtility>();
}

std::span<const StructureCheck> QRXCanonXFUtility::structureChecks() const {
    return kChecks;
}

std::optional<std::string> QRXCanonXFUtility::rootOfUniquePathIdenifier() const {
    return "CONTENTS";
}

std::optional<std::vector<std::string>>
QRXCanonXFUtility::pathComponentsIndicatingTheVolumeHasBegun() const {
    // KEPT: the second is the clip folder of Sony XDCAM EX cards.
    return std::vector<std::string>{"/CONTENTS/CLIPS/", "/BPAV/CLPR/"};
}

std::optional<FilePath> QRXCanonXFUtility::metadataFilePathForVideoFile(
    const FilePath& file) const {
    return answerOr(std::optional<FilePath>{}, "metadataFilePathForVideoFile",
                    [&] { return sidecarOf(file); });
}

FilePaths QRXCanonXFUtility::orderVolumeVideoFiles(const FilePaths& files) const {
    return QRXFileSystemUtility::sharedInstance().orderFilePathsByAscendingNumericValue(files);
}

std::string QRXCanonXFUtility::volumePartnerIdentifierForFilePath(const FilePath& file) const {
    return grandparentFolder(file);
}

bool QRXCanonXFUtility::filePathsAreVolumeSiblings(const FilePaths& files) const {
    return allShareOneKey(files, grandparentFolder);
}

}  // namespace qrx
