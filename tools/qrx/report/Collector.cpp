#include "qrx/report/Collector.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <unordered_set>
#include <utility>

#include "foundation/Drives.h"
#include "foundation/Enumeration.h"
#include "foundation/FileQuestions.h"
#include "foundation/OrderedWork.h"
#include "foundation/PathText.h"
#include "platform/ports/Services.h"
#include "qrx/Names.h"
#include "qrx/ShownText.h"
#include "qrx/report/CardBuilder.h"
#include "qrx/report/CardRoots.h"
#include "qrx/report/ClipFacts.h"
#include "qrx/report/Companions.h"
#include "qrx/report/Poster.h"

namespace qrx::tool {

namespace {

using Utility = QRXHDMediaVolumeUtilityObject;

class Collecting {
public:
    explicit Collecting(const CollectorOptions& options) : options_(options) {}

    Report report() {
        report_.paths = options_.paths;
        report_.made = std::time(nullptr);
        if (options_.makesPosters) pictures_.emplace();
        list();
        claimAll();
        findCards();
        examine([](const ReportedFile& file) { return !isWithoutCard(*file.claim.utility); });
        giveCompanionsAway();
        examine([](const ReportedFile& file) { return !file.clip; });
        if (!*options_.isCancelled) {
            report_.cards = cardsOf(files_, *options_.isCancelled);
            nameVolumes();
            for (const ReportCard& card : report_.cards) {
                report_.totals.add(card.totals);
            }
        }
        return std::move(report_);
    }

private:
    // ---- which files there are

    void list() {
        std::unordered_set<FilePath> seen;
        for (const std::string& argument : options_.paths) {
            const FilePath location = absolutePath(argument);
            if (const auto why = whyMissing(location)) {
                complain((argument.empty() ? "''" : shown(argument)) + ": " + *why);
                continue;
            }
            const auto take = [&](const FilePath& file) {
                if (seen.insert(file).second)
                    files_.push_back({.path = file, .location = location});
                tellProgress(file);
                return !*options_.isCancelled;
            };
            if (!folderExists(location)) {
                take(location);
                continue;
            }
            forEachSourceFile(location, take, [this](const FilePath& folder) {
                complain(shown(folder) + ": cannot be read, or not to its end");
            });
        }
    }

    void complain(const std::string& message) {
        report_.problems.push_back(message);
        if (options_.onProblem) options_.onProblem(message);
    }

    // ---- whose they are

    void claimAll() {
        forEachInOrder<Claim>(
            files_.size(), [](std::size_t i) { return i; },
            [this](const ReportedFile& file) { return claimOf(file.path, options_.exactness); },
            [this](ReportedFile& file, Claim&& claim) {
                file.claim = std::move(claim);
                if (!file.claim.isClip()) ++filesDone_;
            });
    }

    /// A file that lies on a card of some layout belongs there; any other to the location that was
    /// named, or to the volume below it.
    void findCards() {
        std::unordered_set<FilePath> roots;
        for (ReportedFile& file : files_) {
            const auto root =
                file.claim.isClip() ? cardRootOf(file.path, *file.claim.utility) : std::nullopt;
            if (!root) continue;
            file.card = *root;
            roots.insert(*root);
        }
        for (const FilePath& mount : allMountPoints()) {
            roots.insert(mount);
        }
        for (ReportedFile& file : files_) {
            if (file.card.empty()) file.card = innermost(roots, file);
        }
    }

    static FilePath innermost(const std::unordered_set<FilePath>& roots, const ReportedFile& file) {
        FilePath folder = withoutLastPathComponent(file.path);
        while (folder.size() >= file.location.size()) {
            if (roots.contains(folder)) return folder;
            FilePath above = withoutLastPathComponent(folder);
            if (above.size() >= folder.size()) break;
            folder = std::move(above);
        }
        return folderExists(file.location) ? file.location
                                           : withoutLastPathComponent(file.location);
    }

    // ---- what is known of them

    template <class Wanted>
    void examine(const Wanted& isWanted) {
        std::vector<std::size_t> clips;
        for (std::size_t i = 0; i < files_.size(); ++i) {
            if (files_[i].claim.isClip() && files_[i].companionOf == nullptr &&
                isWanted(files_[i])) {
                clips.push_back(i);
            }
        }
        using Clip = std::unique_ptr<ReportClip>;
        forEachInOrder<Clip>(
            clips.size(), [&](std::size_t i) { return clips[i]; },
            [this](const ReportedFile& file) { return examined(file); },
            [this](ReportedFile& file, Clip&& clip) {
                file.clip = std::move(clip);
                ++filesDone_;
                ++clipsDone_;
            });
    }

    [[nodiscard]] std::unique_ptr<ReportClip> examined(const ReportedFile& file) const {
        auto clip = std::make_unique<ReportClip>(factsOf(file.path, *file.claim.utility));
        if (pictures_) {
            clip->poster = posterOf(file.path, *file.claim.utility, pictures_->folder());
        }
        return clip;
    }

    /// Works on `count` files, several at a time; what comes of them is taken in their order.
    template <class Result, class IndexOf, class Work, class Take>
    void forEachInOrder(std::size_t count, const IndexOf& indexOf, const Work& work,
                        const Take& take) {
        std::size_t next = 0;
        OrderedWork<std::size_t, Result> steps;
        steps.next = [&]() -> std::optional<std::size_t> {
            if (next == count) return std::nullopt;
            return indexOf(next++);
        };
        steps.work = [&](const std::size_t& i) { return work(files_[i]); };
        steps.before = [&](const std::size_t& i) { tellProgress(files_[i].path); };
        steps.take = [&](const std::size_t& i, Result&& result) {
            take(files_[i], std::move(result));
        };
        steps.isCancelled = [this] { return options_.isCancelled->load(); };
        performInOrder<std::size_t, Result>(steps, {.jobs = options_.jobs});
    }

    void giveCompanionsAway() {
        const Companions companions(files_);
        for (ReportedFile& file : files_) {
            if (!file.clip) file.companionOf = companions.layoutOf(file);
        }
    }

    void nameVolumes() {
        for (ReportCard& card : report_.cards) {
            if (!isMountPoint(card.root)) continue;
            if (const auto volume = platform::volumeIdentity().describe(card.root)) {
                card.label = volume->label;
            }
        }
    }

    void tellProgress(const FilePath& file) const {
        if (options_.onProgress) options_.onProgress(filesDone_, clipsDone_, file);
    }

    const CollectorOptions& options_;
    Report report_;
    std::vector<ReportedFile> files_;
    std::optional<TemporaryPictures> pictures_;
    std::size_t filesDone_ = 0;
    std::size_t clipsDone_ = 0;
};

}  // namespace

Report collectReport(const CollectorOptions& options) {
    return Collecting(options).report();
}

}  // namespace qrx::tool
