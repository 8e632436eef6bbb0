#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/OrderedWork.h"
#include "volumes/PathDictionary.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"
#include "volumes/QRXQTUtility.h"

namespace qrx {

/// How far a run has come.
struct MatchProgress {
    std::uint64_t filesDone = 0;
    std::uint64_t clipsFound = 0;
    const FilePath& currentFile;  ///< the file that is looked at next
};

/// Who wants to know what of a run. Every call comes on the thread of the run, in the same sequence
/// however many workers there are; what a call throws ends the run and comes out of it.
struct MatchListener {
    /// A clip, in the order in which clips are found.
    std::function<void(const PathDictionary&)> onClip;
    /// Before each file, and not after the last. May be empty.
    std::function<void(const MatchProgress&)> onProgress;
    /// A folder on the way that could not be read, or not to its end. May be empty.
    std::function<void(const FilePath& folder)> onUnreadableFolder;
    /// A location at which nothing exists. May be empty.
    std::function<void(const FilePath& location)> onMissingLocation;
    /// Set by another thread to end the run before its next file. May be null.
    const std::atomic<bool>* isCancelled = nullptr;
};

/// How files are matched.
struct MatchOptions {
    /// Files that are examined at a time, at most WorkLimits::kMostJobs; 0: as many as were chosen
    /// for the whole process, else one per core. The answers are the same.
    unsigned jobs = WorkLimits::kAsChosen;
    /// Whether the ffmpeg tool is spared files whose extension tells that they hold no video; see
    /// Examination::quick.
    bool isQuick = false;
};

/// The next location, nothing at the end. Asked on any thread, by one at a time, ahead of the files
/// that are told of.
using LocationSource = std::function<std::optional<FilePath>()>;

/// What a run came to.
struct MatchSummary {
    std::uint64_t filesDone = 0;
    std::uint64_t clipsFound = 0;
    bool wasCancelled = false;
};

/// The one question: which of the files at these locations are clips, and of which layout. Knows no
/// bus and no terminal.
///
/// Locations are taken in order. One at which nothing exists is passed over; a file stands for
/// itself; a folder stands for its source files, in the order of their enumeration. A file that is
/// reached twice is told twice. Keeps nothing between runs: each works on the file system as it is
/// at that moment. Folders are walked, and files examined, by workers that run ahead of what is
/// told (see OrderedWork); movies are opened on the main thread all the same.
class FileMatcher {
public:
    /// In order of precedence; none is null. They must outlive the matcher.
    using Utilities = std::vector<const QRXHDMediaVolumeUtilityObject*>;

    /// With the utilities of the aggregate.
    explicit FileMatcher(MatchOptions options = {});
    explicit FileMatcher(Utilities utilities, MatchOptions options = {});

    MatchSummary match(const FilePaths& locations, const MatchListener& listener) const;
    MatchSummary match(const LocationSource& locations, const MatchListener& listener) const;

    /// The first utility that claims the file; the base object when none does.
    [[nodiscard]] const QRXHDMediaVolumeUtilityObject& utilityForFile(const FilePath& file) const;

    /// The same for a path under examination.
    [[nodiscard]] const QRXHDMediaVolumeUtilityObject& utilityForPath(ExaminedPath& path) const;
    /// What is told of a file that `utility` claims.
    [[nodiscard]] PathDictionary pathDictionary(ExaminedPath& path,
                                                const QRXHDMediaVolumeUtilityObject& utility) const;

private:
    class Run;

    [[nodiscard]] Examination examination() const {
        return options_.isQuick ? Examination::quick : Examination::exact;
    }
    /// Depends on nothing but the path, so that several files may be examined at the same time.
    [[nodiscard]] std::optional<PathDictionary> examined(const FilePath& file) const;

    Utilities utilities_;
    MatchOptions options_;
    std::unique_ptr<QRXQTUtility> quickTime_;
};

}  // namespace qrx
