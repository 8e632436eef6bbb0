#include "app/QRXHDFileMatcherController.h"

#include "app/FileMatcherInterfaces.h"
#include "app/FileMatcherMethods.h"
#include "foundation/NeutralAnswer.h"
#include "foundation/PathText.h"
#include "platform/ports/Services.h"
#include "readers/MovieReader.h"
#include "volumes/FileMatcher.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXQTUtility.h"

namespace qrx {

namespace {

/// In the resource folder; developers put it there.
constexpr const char* kAutoTestCard = "TEST CARD";

bool hasPictureOrSound(const FilePath& file) {
    const auto movie = MovieReader().open(file);
    return movie && (movie->count(TrackMedia::sound) > 0 || movie->count(TrackMedia::video) > 0);
}

}  // namespace

std::vector<PathDictionary>
QRXHDFileMatcherController::filePathDictionariesForAllHDFilesAtFileSystemLocations(
    const FilePaths& locations) const {
    return filePathDictionariesForAllHDFilesAtFileSystemLocations(locations, nullptr);
}

std::vector<PathDictionary>
QRXHDFileMatcherController::filePathDictionariesForAllHDFilesAtFileSystemLocations(
    const FilePaths& locations, const std::atomic<bool>* isCancelled) const {
    return answerOr(std::vector<PathDictionary>{}, "filePathDictionaries", [&] {
        std::vector<PathDictionary> clips;
        MatchListener listener;
        listener.onClip = [&clips](const PathDictionary& clip) { clips.push_back(clip); };
        listener.isCancelled = isCancelled;
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
    (void)filePathDictionariesForAllHDFilesAtFileSystemLocations(
        {joinedPath(platform::services().resourceFolder, kAutoTestCard)});
}

void QRXHDFileMatcherController::awakeFromNib() {
    constexpr std::size_t kNameArgument = 1;
    detachNewThread([this] { ensureValidAppIsRunning(); });
    vendAsDistributedObjectWithArgumentIndexForRegisteredName(kNameArgument);
}

std::vector<std::string_view> QRXHDFileMatcherController::interfaceDescriptions() const {
    auto all = QRXDistributedAppController::interfaceDescriptions();
    all.insert(all.end(), {kQRXHDFileMatcherProtocolXml, kQRXHDFileMatcherStreamXml});
    return all;
}

std::vector<BusMethod> QRXHDFileMatcherController::exportedMethods() {
    auto all = QRXDistributedAppController::exportedMethods();
    for (BusMethod& method : fileMatcherMethods(*this)) {
        all.push_back(std::move(method));
    }
    return all;
}

std::string_view QRXHDFileMatcherController::wayOutOfLargeAnswers() const {
    return "Ask com.quillfen.QRXHDFileMatcherStream, which has no limit, or for fewer locations.";
}

}  // namespace qrx
