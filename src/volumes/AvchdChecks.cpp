#include "volumes/AvchdChecks.h"

#include <string_view>

#include "foundation/FilePath.h"
#include "foundation/FileQuestions.h"
#include "foundation/Text.h"

namespace qrx::avchd {

namespace {

constexpr std::string_view kPrivateFolder = "/PRIVATE/AVCHD/";
constexpr std::string_view kStreamFolder = "/AVCHD/BDMV/STREAM/";
constexpr std::string_view kPrivateStreamFolder = "/PRIVATE/AVCHD/BDMV/STREAM/";
constexpr std::string_view kCanonFolder = "/PRIVATE/AVCHD/CANON";
constexpr std::string_view kClipSuffix = ".MTS";

}  // namespace

CheckVerdict liesBelowPrivate(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(contains(path.upperCased(), kPrivateFolder));
}

CheckVerdict liesBelowStreamFolder(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(contains(path.upperCased(), kStreamFolder));
}

CheckVerdict standsInStreamFolder(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    // KEPT: the name is sought as it stands in a path made upper case, so a clip whose name has a
    // small letter is never found. Such a clip is left to the ffmpeg tool.
    return passesIf(containsInARow(path.upperCased(), kStreamFolder, path.fileName()));
}

CheckVerdict isTransportStream(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(endsWith(path.upperCased(), kClipSuffix));
}

CheckVerdict hasCanonFolder(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    // The case of the path counts here: below "private/avchd" no card root is found.
    const std::string_view whole = path.path();
    FilePath folder(whole.substr(0, find(whole, kPrivateFolder).value_or(whole.size())));
    folder += kCanonFolder;
    return passesIf(itemExists(folder));
}

CheckVerdict standsOutsidePrivate(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return passesIf(!containsInARow(path.path(), kPrivateStreamFolder, path.fileName()));
}

}  // namespace qrx::avchd
