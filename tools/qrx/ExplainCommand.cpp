#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fmt/core.h>
#include <nlohmann/json.hpp>

#include "app/ClipRecord.h"
#include "qrx/Commands.h"
#include "qrx/GivenFiles.h"
#include "qrx/JsonText.h"
#include "qrx/ShownText.h"
#include "qrx/ToolReports.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
The layouts are asked in order of precedence; the first that claims a file gets
it. Each is listed with the check that decided.

Exit status: 0 every file was explained; 1 something could not be (it is named on
standard error); 2 wrong usage; 130 after Ctrl-C.

Examples:
  qrx explain /media/me/CARD/AVCHD/BDMV/STREAM/00000.MTS
  qrx explain --format json clip.mov)";

struct ExplainOptions {
    std::vector<std::string> files;
    std::string format = "text";
};

/// What one utility said of the file.
struct Opinion {
    std::string volumeTitle;
    bool claims = false;
    bool asksNothing = false;   ///< it has no check, so it claims nothing
    std::string decisiveCheck;  ///< empty where all checks passed
};

struct Explanation {
    std::string file;
    std::vector<Opinion> opinions;  ///< in order of precedence

    /// Who got the file.
    [[nodiscard]] const Opinion* claimedBy() const {
        const auto first = std::find_if(opinions.begin(), opinions.end(),
                                        [](const Opinion& each) { return each.claims; });
        return first == opinions.end() ? nullptr : &*first;
    }
};

Explanation explanationOf(const std::string& file, const std::atomic<bool>& isCancelled) {
    Explanation explanation{.file = file, .opinions = {}};
    ExaminedPath path(explanation.file);
    for (const auto* const utility : QRXHDMediaVolumeAggregate::hdUtilitiesOrderedByPrecedent()) {
        if (isCancelled) break;
        const StructureFinding finding = utility->findStructure(path);
        Opinion opinion;
        opinion.volumeTitle = utility->volumeTitle();
        opinion.claims = finding.claimed;
        opinion.asksNothing = utility->structureChecks().empty();
        if (finding.decisive != nullptr) opinion.decisiveCheck = finding.decisive->phrase;
        explanation.opinions.push_back(std::move(opinion));
    }
    return explanation;
}

std::string reason(const Opinion& opinion) {
    if (opinion.asksNothing) return "knows no clips yet";
    if (opinion.decisiveCheck.empty()) return opinion.claims ? "every check holds" : "";
    return opinion.claims ? opinion.decisiveCheck : "does not hold: " + opinion.decisiveCheck;
}

std::string explanationText(const Explanation& explanation) {
    std::size_t titleColumns = 0;
    for (const Opinion& opinion : explanation.opinions) {
        titleColumns = std::max(titleColumns, opinion.volumeTitle.size());
    }
    std::string text = shown(explanation.file) + "\n";
    for (const Opinion& opinion : explanation.opinions) {
        text += fmt::format("  {:<3}  {:<{}}  {}\n", opinion.claims ? "yes" : "no",
                            opinion.volumeTitle, titleColumns, reason(opinion));
    }
    const Opinion* const winner = explanation.claimedBy();
    text += winner != nullptr ? "  claimed by " + winner->volumeTitle + "\n"
                              : std::string("  claimed by none: not a clip\n");
    return text;
}

nlohmann::ordered_json explanationJson(const Explanation& explanation) {
    nlohmann::ordered_json record;
    addPath(record, explanation.file);
    const Opinion* const winner = explanation.claimedBy();
    record["claimedBy"] = nullptr;
    if (winner != nullptr) record["claimedBy"] = winner->volumeTitle;
    record["utilities"] = nlohmann::ordered_json::array();
    for (const Opinion& opinion : explanation.opinions) {
        nlohmann::ordered_json entry;
        entry["volumeTitle"] = opinion.volumeTitle;
        entry["claims"] = opinion.claims;
        entry[opinion.claims ? "decisiveCheck" : "failedCheck"] = nullptr;
        if (!opinion.decisiveCheck.empty()) {
            entry[opinion.claims ? "decisiveCheck" : "failedCheck"] = opinion.decisiveCheck;
        }
        record["utilities"].push_back(std::move(entry));
    }
    return record;
}

int explain(const ExplainOptions& options, Session& session) {
    reportToolProblems(session.console);
    const bool asJson = options.format == "json";
    auto all = nlohmann::ordered_json::array();
    int status = kDone;
    std::string between;
    FileQuestion<Explanation> question;
    question.ask = [&](const FilePath& file) { return explanationOf(file, session.isCancelled); };
    question.complain = [&](const std::string& argument, const std::string& why) {
        session.console.say((argument.empty() ? "''" : shown(argument)) + ": " + why);
        status = kTrouble;
    };
    question.take = [&](const std::string&, const FilePath&, const Explanation& explanation) {
        if (asJson) {
            all.push_back(explanationJson(explanation));
        } else {
            session.output.write(std::exchange(between, "\n") + explanationText(explanation));
        }
    };
    if (!askAboutFiles(options.files, session, question)) return kTrouble;
    constexpr int kIndent = 2;
    if (asJson) session.output.write(jsonText(all, kIndent) + "\n");
    return status;
}

}  // namespace

void addExplainCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<ExplainOptions>();
    auto tools = std::make_shared<ToolOptions>();
    CLI::App& command =
        *program.add_subcommand("explain", "Say why a file is a clip of a layout, or is none");
    command.add_option("FILE", options->files, "The files to explain")->required();
    command.add_option("-f,--format", options->format, "How it is written")
        ->type_name("text|json")
        ->capture_default_str()
        ->check(CLI::IsMember({"text", "json"}).description(""));
    addJobsOption(command, *tools);
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        job.tools = *tools;
        job.run = [options](Session& session) { return explain(*options, session); };
    });
}

}  // namespace qrx::tool
