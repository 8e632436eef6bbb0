#include "app/QRXHDFileMatcherController.h"

#include "foundation/NeutralAnswer.h"
#include "platform/ports/Services.h"
#include "readers/MovieReader.h"
#include "volumes/FileMatcher.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXQTUtility.h"

namespace qrx {

namespace {

constexpr const char* kAutoTestFolder = "/Volumes/TEST CARD";

bool hasPictureOrSound(const FilePath& file) {
    const auto movie = MovieReader().open(file);
    return movie && (movie->count(TrackMedia::sound) > 0 || movie->count(TrackMedia::video) > 0);
}

}  // namespace

std::vector<PathDictionary>
QRXHDFileMatcherController::filePathDictionariesForAllHDFilesAtFileSystemLocations(
    const FilePaths& locations) const {
    return answerOr(std::vector<PathDictionary>{}, "filePathDictionaries", [&] {
        std::vector<PathDictionary> clips;
        MatchListener listener;
        listener.onClip = [&clips](const PathDictionary& clip) { clips.push_back(clip); };
        (void)FileMatcher().match(locations, listener);
        return clips;
    });
}

bool QRXHDFileMatcherController::filePathIsQuickTime(const FilePath& file) const {
    return answerOr(false, "filePathIsQuickTime", [&] {
        bool isMovie = false;
        platform::mainThread().runAndWait([&] { isMovie = hasPictureOrSound(file); });
        return isMovie;
    });
}

bool QRXHDFileMatcherController::filePathMatchesADefinedVolume(const FilePath& file) const {
    return QRXHDMediaVolumeAggregate::hdAggregate().utilityForFileAtPath(file).volumeType() !=
           QRXHDMediaVolumeUtilityObject::kNoDefinedVolume;
}

PathDictionary QRXHDFileMatcherController::pathDictionaryForFile(
    const FilePath& file, const QRXHDMediaVolumeUtilityObject& utility) const {
    ExaminedPath path(file);
    return FileMatcher().pathDictionary(path, utility);
}

bool QRXHDFileMatcherController::filePathIsQuickTimeCompatible(const FilePath& file) const {
    return QRXQTUtility::volumeUtility()->filePathMatchesVolumeStructure(file);
}

std::optional<FilePaths> QRXHDFileMatcherController::filePathsMatchingHDFormats(
    const std::vector<std::string>& /*formats*/, const FilePaths& /*locations*/) const {
    return std::nullopt;
}

void QRXHDFileMatcherController::autoTest() const {
    (void)filePathDictionariesForAllHDFilesAtFileSystemLocations({kAutoTestFolder});
}

}  // namespace qrx
