#include "volumes/FileMatcher.h"

#include <utility>

#include "foundation/Enumeration.h"
#include "foundation/FileQuestions.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace qrx {

namespace {

FileMatcher::Utilities utilitiesOfTheAggregate() {
    const auto shared = QRXHDMediaVolumeAggregate::hdUtilitiesOrderedByPrecedent();
    return {shared.begin(), shared.end()};
}

}  // namespace

/// One pass over the locations. Walking is apart from examining, so that the files which a walk
/// yields can be examined elsewhere and their answers be told here, in the order of the walk.
class FileMatcher::Run {
public:
    Run(const FileMatcher& matcher, const MatchListener& listener)
        : matcher_(matcher), listener_(listener) {}

    MatchSummary over(const FilePaths& locations) {
        for (const FilePath& location : locations) {
            if (!lookAt(location)) break;
        }
        return summary_;
    }

private:
    /// NO when the run is to end.
    bool lookAt(const FilePath& location) {
        if (folderExists(location)) {
            return forEachSourceFile(
                location, [this](const FilePath& file) { return take(file); },
                listener_.onUnreadableFolder);
        }
        return !itemExists(location) || take(location);
    }

    /// NO when the run is to end.
    bool take(const FilePath& file) {
        if (isCancelled()) return false;
        if (listener_.onProgress) {
            listener_.onProgress({summary_.filesDone, summary_.clipsFound, file});
        }
        const auto clip = matcher_.examined(file);
        // Ending the tools in the middle of an examination turns its answer into a guess.
        if (isCancelled()) return false;
        ++summary_.filesDone;
        if (clip) {
            ++summary_.clipsFound;
            listener_.onClip(*clip);
        }
        return true;
    }

    bool isCancelled() {
        summary_.wasCancelled = listener_.isCancelled != nullptr && *listener_.isCancelled;
        return summary_.wasCancelled;
    }

    const FileMatcher& matcher_;
    const MatchListener& listener_;
    MatchSummary summary_;
};

FileMatcher::FileMatcher() : FileMatcher(utilitiesOfTheAggregate()) {}

FileMatcher::FileMatcher(Utilities utilities)
    : utilities_(std::move(utilities)), quickTime_(QRXQTUtility::volumeUtility()) {}

MatchSummary FileMatcher::match(const FilePaths& locations, const MatchListener& listener) const {
    return Run(*this, listener).over(locations);
}

const QRXHDMediaVolumeUtilityObject& FileMatcher::utilityForPath(ExaminedPath& path) const {
    for (const QRXHDMediaVolumeUtilityObject* const utility : utilities_) {
        if (utility->examinedPathMatches(path)) return *utility;
    }
    return QRXHDMediaVolumeUtilityObject::sharedInstance();
}

PathDictionary FileMatcher::pathDictionary(ExaminedPath& path,
                                           const QRXHDMediaVolumeUtilityObject& utility) const {
    return {.filePath = path.path(),
            .volumeTitle = utility.volumeTitle(),
            .qt = quickTime_->examinedPathMatches(path)};
}

std::optional<PathDictionary> FileMatcher::examined(const FilePath& file) const {
    ExaminedPath path(file);
    const QRXHDMediaVolumeUtilityObject& utility = utilityForPath(path);
    if (utility.volumeType() == QRXHDMediaVolumeUtilityObject::kNoDefinedVolume) {
        return std::nullopt;
    }
    return pathDictionary(path, utility);
}

}  // namespace qrx
