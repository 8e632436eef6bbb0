#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "qrx/Commands.h"
#include "qrx/GivenFiles.h"
#include "qrx/ShownText.h"
#include "qrx/ToolReports.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
Writes the paths of the clips in the order in which the card recorded them. Clips
of several layouts come layout by layout, in the order in which each is met first.

One path a line; characters that could harm a terminal are shown as \n, \x1b,
\u{202e}, and a backslash as \\. With -0 each path is written as it is and ends in
a NUL byte (for xargs -0).

Exit status: 0 all files were ordered; 1 a file is missing, or no layout claims it
(it is named on standard error and left out); 2 wrong usage; 130 after Ctrl-C.

Examples:
  qrx order /media/me/CARD/CONTENTS/VIDEO/*.MXF
  qrx order -0 *.MP4 | xargs -0 ls -l)";

struct OrderOptions {
    std::vector<std::string> files;
    bool namesEndInNul = false;
};

struct ClipsOfLayout {
    const QRXHDMediaVolumeUtilityObject* utility = nullptr;
    FilePaths clips;
};

class Ordering {
public:
    Ordering(const OrderOptions& options, Session& session)
        : options_(options), session_(session) {}

    int run() {
        reportToolProblems(session_.console);
        FileQuestion<const QRXHDMediaVolumeUtilityObject*> question;
        question.ask = [](const FilePath& file) {
            return &QRXHDMediaVolumeAggregate::sharedInstance().utilityForFileAtPath(file);
        };
        question.take = [this](const std::string& argument, const FilePath& file,
                               const QRXHDMediaVolumeUtilityObject* utility) {
            take(argument, file, *utility);
        };
        question.complain = [this](const std::string& argument, const std::string& why) {
            complain(argument, why);
        };
        if (!askAboutFiles(options_.files, session_, question)) return kTrouble;
        for (const ClipsOfLayout& layout : layouts_) {
            const FilePaths ordered = layout.utility->orderVolumeVideoFiles(layout.clips);
            if (session_.isCancelled) return kTrouble;
            std::for_each(ordered.begin(), ordered.end(),
                          [this](const FilePath& clip) { write(clip); });
        }
        return status_;
    }

private:
    void take(const std::string& argument, const FilePath& file,
              const QRXHDMediaVolumeUtilityObject& utility) {
        if (utility.volumeType() == QRXHDMediaVolumeUtilityObject::kNoDefinedVolume) {
            complain(argument, "no layout claims it (qrx explain says why)");
            return;
        }
        const auto known = std::find_if(layouts_.begin(), layouts_.end(),
                                        [&](const auto& each) { return each.utility == &utility; });
        if (known == layouts_.end()) {
            layouts_.push_back({.utility = &utility, .clips = {file}});
        } else {
            known->clips.push_back(file);
        }
    }

    void write(const FilePath& clip) {
        session_.output.write(options_.namesEndInNul ? clip + '\0' : shown(clip) + '\n');
    }

    void complain(const std::string& argument, const std::string& why) {
        session_.console.say((argument.empty() ? "''" : shown(argument)) + ": " + why);
        status_ = kTrouble;
    }

    const OrderOptions& options_;
    Session& session_;
    std::vector<ClipsOfLayout> layouts_;
    int status_ = kDone;
};

}  // namespace

void addOrderCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<OrderOptions>();
    auto tools = std::make_shared<ToolOptions>();
    CLI::App& command =
        *program.add_subcommand("order", "Put clips in the order in which they were recorded");
    command.add_option("FILE", options->files, "The clips")->required();
    command.add_flag("-0,--null", options->namesEndInNul, "End each path with a NUL byte");
    addJobsOption(command, *tools);
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        job.tools = *tools;
        job.run = [options](Session& session) { return Ordering(*options, session).run(); };
    });
}

}  // namespace qrx::tool
