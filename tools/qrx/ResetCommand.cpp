#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include "foundation/FileQuestions.h"
#include "foundation/FolderListing.h"
#include "foundation/QRXFileSystemUtility.h"
#include "qrx/Commands.h"
#include "qrx/Names.h"
#include "qrx/RemovalTrouble.h"
#include "qrx/ShownText.h"
#include "volumes/DriveReset.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
Makes an empty card of a drive, in the layout that it has. Without --yes nothing
is touched: the plan is shown, and that is all. With --yes THE CLIPS ARE REMOVED;
each step and each removal is named.

DRIVE is the folder at which the card is mounted. It must be a removable drive
(see qrx drives), and the drive test of the layout must say yes. Where those of
several layouts do, the first that has a reset is taken and named; --layout
chooses another of them. Links are removed and never followed.

The reset of RED One removes the drive's folder itself; where a card is mounted
that folder stays, and the card is reset when nothing is left on it.

After Ctrl-C nothing more is removed; what puts the layout back is still done.

Exit status: 0 the plan was shown, or the reset is done; 1 the drive is none to
reset, or a step that counts failed (what went before it stays gone); 2 wrong
usage; 130 after Ctrl-C.

Examples:
  qrx reset /media/me/CARD
  qrx reset --yes --layout 'Panasonic P2' /media/me/CARD)";

struct ResetOptions {
    std::string drive;
    std::string layout;  ///< empty: the first that has a reset
    bool isMeant = false;
};

using Utility = QRXHDMediaVolumeUtilityObject;
using Utilities = std::vector<const Utility*>;

std::string titles(const Utilities& utilities) {
    std::string text;
    for (const Utility* const utility : utilities) {
        text += (text.empty() ? "" : ", ") + utility->volumeTitle();
    }
    return text;
}

Utilities utilitiesConfirming(const FilePath& drive) {
    Utilities confirming;
    for (const auto* const utility : QRXHDMediaVolumeAggregate::hdUtilitiesOrderedByPrecedent()) {
        if (utility->drivePathMatchesVolumeStructure(drive)) confirming.push_back(utility);
    }
    return confirming;
}

bool isRemovable(const FilePath& drive) {
    const FilePaths drives = QRXFileSystemUtility::sharedInstance().removableDrives();
    return std::find(drives.begin(), drives.end(), drive) != drives.end();
}

bool isThere(const FilePath& path) {
    std::error_code unknown;
    return std::filesystem::exists(std::filesystem::symlink_status(path, unknown));
}

bool isRemoval(const ResetStep& step) {
    using Kind = ResetStep::Kind;
    return step.kind == Kind::remove || step.kind == Kind::removeByTool ||
           step.kind == Kind::clearFiles;
}

/// What is there for the step to remove, each folder after what is in it; links are not followed.
FilePaths itemsToRemove(const ResetStep& step) {
    FilePaths items;
    if (!isRemoval(step)) return items;
    const bool foldersStay = step.kind == ResetStep::Kind::clearFiles;
    if (isThere(step.path) && !foldersStay) items.push_back(step.path);
    if (isRealFolder(step.path)) {
        namespace fs = std::filesystem;
        constexpr auto kOptions = fs::directory_options::skip_permission_denied;
        std::error_code end;
        for (fs::recursive_directory_iterator each(step.path, kOptions, end);
             !end && each != fs::recursive_directory_iterator(); each.increment(end)) {
            const bool isFolder = each->symlink_status(end).type() == fs::file_type::directory;
            if (!isFolder || !foldersStay) items.push_back(each->path().string());
        }
    }
    std::reverse(items.begin(), items.end());
    return items;
}

class Reset {
public:
    Reset(const ResetOptions& options, Session& session)
        : options_(options), session_(session), drive_(absolutePath(options.drive)) {}

    int run() {
        if (const auto why = whyMissing(drive_)) return refuse(*why);
        if (!isRemovable(drive_)) return refuse("is not a removable drive (see qrx drives)");
        if (isOnReadOnlyFileSystem(drive_)) {
            return refuse("is mounted read-only; is the card's write protection on?");
        }
        const Utilities confirming = utilitiesConfirming(drive_);
        if (confirming.empty()) return refuse("no layout's drive test says yes");
        const Utility* const utility = chosen(confirming);
        if (utility == nullptr) return kTrouble;
        if (const auto missing = missingSource()) return refuse(*missing);
        session_.output.write(headline(*utility, confirming));
        return options_.isMeant ? carryOutPlan() : showPlan();
    }

private:
    int refuse(const std::string& why) {
        session_.console.say((drive_.empty() ? "''" : shown(drive_)) + ": " + why +
                             "; nothing was changed");
        return kTrouble;
    }

    /// Whose reset is taken, its plan made; null, and said why, when there is none.
    const Utility* chosen(const Utilities& confirming) {
        bool isConfirmed = false;
        for (const Utility* const utility : confirming) {
            if (!options_.layout.empty() && utility->volumeTitle() != options_.layout) continue;
            isConfirmed = true;
            if (auto plan = utility->resetPlan(drive_)) {
                plan_ = std::move(*plan);
                return utility;
            }
        }
        if (isConfirmed) {
            refuse("there is no reset for " +
                   (options_.layout.empty() ? titles(confirming) : options_.layout));
        } else {
            refuse("the drive test of " + options_.layout + " says no, that of " +
                   titles(confirming) + " yes");
        }
        return nullptr;
    }

    /// A card whose files are gone and whose marker does not come back is no card any more.
    [[nodiscard]] std::optional<std::string> missingSource() const {
        for (const ResetStep& step : plan_) {
            if (step.kind == ResetStep::Kind::copyFile && !fileExists(step.argument)) {
                return shown(step.argument) + ", which the reset puts on the card, is missing";
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] std::string headline(const Utility& utility, const Utilities& confirming) const {
        std::string text = shown(drive_) + ": the reset of " + utility.volumeTitle();
        if (confirming.size() > 1) {
            text += fmt::format(" (the drive tests that say yes: {}; --layout chooses)",
                                titles(confirming));
        }
        return text + "\n";
    }

    /// The step would remove the folder at which the card is mounted: that one cannot go.
    [[nodiscard]] bool emptiesTheCard(const ResetStep& step) const {
        return step.kind == ResetStep::Kind::remove && step.path == drive_ && isMountPoint(drive_);
    }

    /// What the step removes, each folder after what is in it.
    [[nodiscard]] FilePaths removals(const ResetStep& step) const {
        FilePaths items = itemsToRemove(step);
        if (emptiesTheCard(step)) items.pop_back();
        return items;
    }

    [[nodiscard]] std::string phrase(const ResetStep& step) const {
        if (emptiesTheCard(step)) {
            return "remove all that is on " + shown(drive_) + "; the folder itself stays";
        }
        return shown(description(step));
    }

    int showPlan() {
        for (const ResetStep& step : plan_) {
            std::string text = phrase(step);
            if (isRemoval(step)) {
                const std::size_t count = removals(step).size();
                text += fmt::format(" ({} {})", count, count == 1 ? "item" : "items");
            }
            session_.output.write("  " + text + "\n");
        }
        session_.output.write(plan_.empty() ? "There is nothing to remove.\n"
                                            : "Nothing was changed; --yes carries this out.\n");
        return kDone;
    }

    int carryOutPlan() {
        for (const ResetStep& step : plan_) {
            const bool removes =
                step.kind != ResetStep::Kind::makeFolder && step.kind != ResetStep::Kind::copyFile;
            if (session_.isCancelled && removes) continue;
            if (!taken(step)) {
                session_.console.say(shown(drive_) + ": the reset failed");
                return kTrouble;
            }
        }
        if (session_.isCancelled) return kTrouble;
        session_.output.write("The card is reset.\n");
        return kDone;
    }

    /// Whether the reset may go on.
    bool taken(const ResetStep& step) {
        const FilePaths items = removals(step);
        // The tool says no where there is nothing, and so does the log.
        const bool isIdle = step.kind == ResetStep::Kind::removeByTool && items.empty();
        bool isEmptied = false;
        const bool goesOn = carryOut({step}, [&](const ResetStep&, bool succeeded) {
            FilePaths left;
            for (const FilePath& item : items) {
                if (isThere(item)) {
                    left.push_back(item);
                } else {
                    session_.output.write("  removed " + shown(item) + "\n");
                }
            }
            isEmptied = emptiesTheCard(step) && namesInFolder(drive_) == FilePaths{};
            if (!isIdle) {
                session_.output.write((succeeded || isEmptied ? "  done: " : "  failed: ") +
                                      phrase(step) + "\n");
            }
            if (!succeeded && !isEmptied) sayWhy(step, left);
        });
        session_.output.flush();
        return goesOn || isEmptied;
    }

    /// Of a step that failed: how much it left, and the first item that shows a reason.
    void sayWhy(const ResetStep& step, const FilePaths& left) {
        if (!left.empty()) {
            session_.console.say(fmt::format("{}: {} not removed", shown(drive_),
                                             left.size() == 1
                                                 ? std::string("1 item was")
                                                 : fmt::format("{} items were", left.size())));
        }
        for (const FilePath& item : isRemoval(step) ? left : FilePaths{step.path}) {
            if (const auto why = whyNotRemovable(item)) {
                return session_.console.say(shown(item) + ": " + *why);
            }
        }
    }

    const ResetOptions& options_;
    Session& session_;
    FilePath drive_;
    ResetPlan plan_;
};

void refuseUnknownLayout(const ResetOptions& options) {
    if (options.layout.empty()) return;
    if (QRXHDMediaVolumeAggregate::sharedInstance().utilityWithTitle(options.layout) == nullptr) {
        throw CLI::ValidationError("--layout", "there is no layout " + options.layout);
    }
}

}  // namespace

void addResetCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<ResetOptions>();
    CLI::App& command =
        *program.add_subcommand("reset", "Make an empty card of a drive; shows the plan first");
    command.add_option("DRIVE", options->drive, "Where the card is mounted")->required();
    command.add_option("--layout", options->layout, "Whose reset")->type_name("TITLE");
    command.add_flag("--yes", options->isMeant, "Carry the plan out");
    command.footer(kFooter);
    command.callback([options, &job] {
        refuseUnknownLayout(*options);
        job.run = [options](Session& session) { return Reset(*options, session).run(); };
    });
}

}  // namespace qrx::tool
