#include "volumes/FileMatcher.h"

#include <deque>
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

/// What the walk over the locations comes by.
struct Found {
    enum class Kind { file, unreadableFolder, missingLocation };

    Kind kind;
    FilePath path;
};

/// Yields what is found at the locations, in their order.
class LocationWalk {
public:
    LocationWalk(const LocationSource& locations, const std::atomic<bool>* isCancelled)
        : locations_(locations), isCancelled_(isCancelled) {}
    LocationWalk(const LocationWalk&) = delete;
    LocationWalk& operator=(const LocationWalk&) = delete;

    /// Nothing at the end, or when cancelled.
    std::optional<Found> next() {
        while (found_.empty()) {
            const bool isCancelled = isCancelled_ != nullptr && *isCancelled_;
            if (isCancelled || !(folder_ ? step() : goToNextLocation())) return std::nullopt;
        }
        Found first = std::move(found_.front());
        found_.pop_front();
        return first;
    }

private:
    bool step() {
        if (!folder_->next()) {
            folder_.reset();
        } else if (folder_->isFile()) {
            found_.push_back({Found::Kind::file, folder_->path()});
        }
        return true;
    }

    bool goToNextLocation() {
        std::optional<FilePath> location = locations_();
        if (!location) return false;
        if (folderExists(*location)) {
            folder_.emplace(*location, [this](const FilePath& folder) {
                found_.push_back({Found::Kind::unreadableFolder, folder});
            });
        } else {
            const bool isThere = itemExists(*location);
            found_.push_back(
                {isThere ? Found::Kind::file : Found::Kind::missingLocation, std::move(*location)});
        }
        return true;
    }

    const LocationSource& locations_;
    const std::atomic<bool>* isCancelled_;
    std::optional<SourceFileWalk> folder_;  ///< the one that is walked
    std::deque<Found> found_;               ///< and not yet yielded
};

}  // namespace

/// One pass over the locations. What is told is told here, on the thread of the run; walking and
/// examining are done elsewhere.
class FileMatcher::Run {
public:
    Run(const FileMatcher& matcher, const MatchListener& listener)
        : matcher_(matcher), listener_(listener) {}

    MatchSummary over(const LocationSource& locations) {
        using Clip = std::optional<PathDictionary>;
        LocationWalk walk(locations, listener_.isCancelled);
        const bool isWhole = performInOrder<Found, Clip>(
            {.next = [&walk] { return walk.next(); },
             .work =
                 [this](const Found& found) {
                     return found.kind == Found::Kind::file ? matcher_.examined(found.path)
                                                            : Clip();
                 },
             .before = [this](const Found& found) { announce(found); },
             .take = [this](const Found& found, Clip&& clip) { take(found, clip); },
             .isCancelled =
                 [this] { return listener_.isCancelled != nullptr && *listener_.isCancelled; }},
            {.jobs = matcher_.options_.jobs});
        summary_.wasCancelled = !isWhole;
        return summary_;
    }

private:
    void announce(const Found& found) {
        if (found.kind != Found::Kind::file || !listener_.onProgress) return;
        listener_.onProgress({summary_.filesDone, summary_.clipsFound, found.path});
    }

    void take(const Found& found, const std::optional<PathDictionary>& clip) {
        switch (found.kind) {
            case Found::Kind::unreadableFolder:
                if (listener_.onUnreadableFolder) listener_.onUnreadableFolder(found.path);
                return;
            case Found::Kind::missingLocation:
                if (listener_.onMissingLocation) listener_.onMissingLocation(found.path);
                return;
            case Found::Kind::file:
                ++summary_.filesDone;
                if (!clip) return;
                ++summary_.clipsFound;
                listener_.onClip(*clip);
        }
    }

    const FileMatcher& matcher_;
    const MatchListener& listener_;
    MatchSummary summary_;
};

FileMatcher::FileMatcher(MatchOptions options) : FileMatcher(utilitiesOfTheAggregate(), options) {}

FileMatcher::FileMatcher(Utilities utilities, MatchOptions options)
    : utilities_(std::move(utilities)),
      options_(options),
      quickTime_(QRXQTUtility::volumeUtility()) {}

MatchSummary FileMatcher::match(const FilePaths& locations, const MatchListener& listener) const {
    auto next = locations.begin();
    const LocationSource each = [&]() -> std::optional<FilePath> {
        if (next == locations.end()) return std::nullopt;
        return *next++;
    };
    return match(each, listener);
}

MatchSummary FileMatcher::match(const LocationSource& locations,
                                const MatchListener& listener) const {
    return Run(*this, listener).over(locations);
}

const QRXHDMediaVolumeUtilityObject& FileMatcher::utilityForFile(const FilePath& file) const {
    ExaminedPath path(file, examination());
    return utilityForPath(path);
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
    ExaminedPath path(file, examination());
    const QRXHDMediaVolumeUtilityObject& utility = utilityForPath(path);
    if (utility.volumeType() == QRXHDMediaVolumeUtilityObject::kNoDefinedVolume) {
        return std::nullopt;
    }
    return pathDictionary(path, utility);
}

}  // namespace qrx
