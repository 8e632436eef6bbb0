#include "volumes/QRXQTUtility.h"

#include <array>
#include <ctime>

#include "foundation/NeutralAnswer.h"
#include "foundation/SharedInstance.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/QuickTimeChecks.h"

namespace qrx {

namespace {

std::optional<MovieDescription> openedOnMainThread(const FilePath& file) {
    std::optional<MovieDescription> movie;
    platform::mainThread().runAndWait([&] { movie = MovieReader().open(file); });
    return movie;
}

/// A fault counts as not opened.
std::optional<MovieDescription> openedIfPossible(const FilePath& file) {
    return answerOr(std::optional<MovieDescription>(), "opening a movie",
                    [&] { return openedOnMainThread(file); });
}

bool hasPictureOrSound(const MovieDescription& movie) {
    return movie.count(TrackMedia::video) > 0 || movie.count(TrackMedia::sound) > 0;
}

/// In the local zone; nothing for a time that no calendar reaches.
std::optional<std::string> calendarText(MovieTime secondsSince1970) {
    const auto time = static_cast<std::time_t>(secondsSince1970);
    std::tm parts{};
    if (::localtime_r(&time, &parts) == nullptr) return std::nullopt;
    std::array<char, 64> text{};
    const std::string format = QRXMetadataWrapper::dateKeyCalendarFormat();
    const std::size_t length = std::strftime(text.data(), text.size(), format.c_str(), &parts);
    return std::string(text.data(), length);
}

}  // namespace

std::unique_ptr<QRXQTUtility> QRXQTUtility::volumeUtility() {
    return std::make_unique<QRXQTUtility>();
}

QRXQTUtility& QRXQTUtility::sharedInstance() {
    return sharedInstanceOf<QRXQTUtility>();
}

std::span<const StructureCheck> QRXQTUtility::structureChecks() const {
    return quicktime::kLooseMovieChecks;
}

bool QRXQTUtility::attemptToAllocateAQTMovieFromFile(const FilePath& file) const {
    const auto movie = openedOnMainThread(file);
    if (!movie || !hasPictureOrSound(*movie)) return false;
    setPathMatches(true);
    return true;
}

void QRXQTUtility::openMovie(const FilePath& file) const {
    const auto movie = openedIfPossible(file);
    if (!movie) {
        platform::systemLog().notice("Error opening movie " + file +
                                     ", it is missing, unreadable or no movie");
        return;
    }
    if (hasPictureOrSound(*movie)) setPathMatches(true);
}

std::string QRXQTUtility::startTimecodeForVideoFile(const FilePath&) const {
    // KEPT: what a timecode track says is not read, so a movie that has one need not be opened to
    // tell it from one that has none: hosts take the start of a loose movie as 0.
    return QRXTimecodeUtility::defaultTimecode();
}

QRXMetadataWrapper QRXQTUtility::metadataWrapperForVideoFilePath(const FilePath& file) const {
    return answerOr(QRXMetadataWrapper(), "metadataWrapperForVideoFilePath", [&] {
        const MetadataDictionary values{
            {std::string(QRXMediaMetadataStartTimecodeKey), startTimecodeForVideoFile(file)}};
        // KEPT: the attributes are asked of a movie that did not open, which has none, and those
        // of one that opened are left out. Hosts read dimensions and dates elsewhere.
        QRXMetadataWrapper wrapper = openedIfPossible(file)
                                         ? QRXMetadataWrapper()
                                         : metadataWrapperFromMovieAttributes(QTMovieAttributes{});
        wrapper.updateMetadataKeyValuesFromDictionary(values);
        return wrapper;
    });
}

QRXMetadataWrapper QRXQTUtility::metadataWrapperFromMovieAttributes(
    const QTMovieAttributes& attributes) const {
    return answerOr(QRXMetadataWrapper(), "metadataWrapperFromMovieAttributes", [&] {
        MetadataDictionary values;
        const auto take = [&](std::string_view key, const std::optional<std::string>& value) {
            if (value) values.emplace(key, *value);
        };
        if (const auto& size = attributes.naturalSize) {
            take(QRXMediaMetadataCodecDimensionsDescriptionKey,
                 fixedDecimals(size->width, 0) + " x " + fixedDecimals(size->height, 0));
        }
        if (attributes.modificationTime) {
            take(QRXMediaMetadataModificationDateKey, calendarText(*attributes.modificationTime));
        }
        take(QRXMediaMetadataVideoFileTitleKey, attributes.displayName);
        if (attributes.creationTime) {
            take(QRXMediaMetadataCreationDateKey, calendarText(*attributes.creationTime));
        }
        QRXMetadataWrapper wrapper;
        wrapper.updateMetadataKeyValuesFromDictionary(values);
        return wrapper;
    });
}

}  // namespace qrx
