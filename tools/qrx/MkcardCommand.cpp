#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/core.h>

#include "foundation/PathText.h"
#include "platform/ports/ProcessRunner.h"
#include "qrx/Commands.h"
#include "qrx/Names.h"
#include "qrx/ShownText.h"
#include "qrx/cards/CardMaker.h"
#include "qrx/cards/LooseMovies.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
The folder is made; one that exists must be empty. Nothing is ever overwritten,
and a card that cannot be finished is removed again. The media are one second of
colour bars and a tone, encoded by ffmpeg.

Exit status: 0 the card was made; 1 it was not; 2 wrong usage; 130 after Ctrl-C.

Examples:
  qrx mkcard sony-avchd /tmp/card --clips 5
  qrx mkcard all /tmp/cards && qrx scan /tmp/cards
  qrx mkcard --list)";

constexpr std::string_view kAllLayouts = "all";

struct MkcardOptions {
    std::string layout;
    std::string folder;
    std::optional<unsigned> clips;
    bool lists = false;
};

std::string layoutList() {
    std::string text;
    for (const CardMaker& maker : cardMakers()) {
        text += fmt::format("{:<16}  {}\n", maker.layout, maker.description);
    }
    return text + fmt::format("{:<16}  each of these, in a folder of its own\n", kAllLayouts);
}

/// What is asked for, in the order of the table.
std::vector<const CardMaker*> chosenMakers(const std::string& layout) {
    std::vector<const CardMaker*> chosen;
    for (const CardMaker& maker : cardMakers()) {
        if (layout == kAllLayouts || layout == maker.layout) chosen.push_back(&maker);
    }
    return chosen;
}

/// Gives the line that says so.
std::string makeCard(NewCard& card, const CardMaker& maker, const MediaTool& media,
                     const std::optional<unsigned>& wanted) {
    const unsigned clips = wanted.value_or(maker.usualClips);
    maker.make(card, media, clips);
    return fmt::format("{}: {} {} in {}\n", maker.layout, clips, clips == 1 ? "clip" : "clips",
                       shown(card.folder()));
}

int makeCards(const MkcardOptions& options, Session& session) {
    if (options.lists) {
        session.output.write(layoutList());
        return kDone;
    }
    const std::string folder = absolutePath(options.folder);
    const bool all = options.layout == kAllLayouts;
    NewCard root(folder);
    std::vector<std::unique_ptr<NewCard>> cards;  // gone before the folder that they stand in
    const MediaTool media;
    std::string report;
    for (const CardMaker* const maker : chosenMakers(options.layout)) {
        if (all) cards.push_back(std::make_unique<NewCard>(joinedPath(folder, maker->layout)));
        report += makeCard(all ? *cards.back() : root, *maker, media, options.clips);
    }
    root.keep();
    for (const auto& card : cards) {
        card->keep();
    }
    session.output.write(report);
    return kDone;
}

int mkcard(const MkcardOptions& options, Session& session) {
    try {
        return makeCards(options, session);
    } catch (const CardProblem& problem) {
        session.console.say(problem.what());
        return kTrouble;
    } catch (const platform::RunCancelled&) {
        return kTrouble;
    }
}

void refuseContradictions(const MkcardOptions& options) {
    if (options.lists) return;
    if (options.layout.empty() || options.folder.empty()) {
        throw CLI::ValidationError("mkcard", "LAYOUT and FOLDER are needed; see mkcard --list");
    }
    const auto chosen = chosenMakers(options.layout);
    if (chosen.empty()) {
        throw CLI::ValidationError(
            "LAYOUT", "there is no layout " + shown(options.layout) + "; see mkcard --list");
    }
    for (const CardMaker* const maker : chosen) {
        if (options.clips && *options.clips > maker->mostClips) {
            throw CLI::ValidationError(
                "--clips", fmt::format("{} holds at most {}", maker->layout, maker->mostClips));
        }
    }
}

}  // namespace

void addMkcardCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<MkcardOptions>();
    auto tools = std::make_shared<ToolOptions>();
    CLI::App& command =
        *program.add_subcommand("mkcard", "Make a small card with real media, to try things on");
    command.add_option("LAYOUT", options->layout, "Whose card; \"all\" makes one of each");
    command.add_option("FOLDER", options->folder, "Where; it becomes the root of the card");
    command.add_option("--clips", options->clips, "How many clips")
        ->type_name("N")
        ->check(CLI::Range(1U, kMostLooseMovies).description(""));
    command.add_flag("--list", options->lists, "List the layouts");
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        refuseContradictions(*options);
        job.tools = *tools;
        job.run = [options](Session& session) { return mkcard(*options, session); };
    });
}

}  // namespace qrx::tool
