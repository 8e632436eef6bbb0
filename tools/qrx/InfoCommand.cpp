#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/core.h>
#include <nlohmann/json.hpp>

#include "app/ClipRecord.h"
#include "qrx/ClipInfo.h"
#include "qrx/ClipMetadata.h"
#include "qrx/Commands.h"
#include "qrx/GivenFiles.h"
#include "qrx/JsonText.h"
#include "qrx/ShownText.h"
#include "qrx/ToolReports.h"
#include "volumes/FileMatcher.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
Tells everything that the layout of a clip knows about it. What it does not know
is "-" in text and null in JSON. The number behind the name of a frame rate is
the one that is stored and exchanged with other programs.

Without --exact ffmpeg is not asked whether a file is a video whose name ends as
those of pictures, texts and the like do (see qrx scan --help, --quick).

Exit status: 0 every file is a clip and was told; 1 a file is missing, or no
layout claims it (it is named on standard error); 2 wrong usage; 130 after Ctrl-C.

Examples:
  qrx info /media/me/CARD/CONTENTS/VIDEO/0001AB.MXF
  qrx info --format json *.mov)";

struct InfoOptions {
    std::vector<std::string> files;
    std::string format = "text";
    bool isExact = false;
};

// ---- as text

constexpr std::size_t kLabelColumns = 16;

std::string line(std::string_view label, const std::optional<std::string>& value) {
    const std::string text = value && !value->empty() ? shown(*value) : "-";
    return fmt::format("  {:<{}}{}\n", label, kLabelColumns, text);
}

std::string audioLines(const std::optional<FilePaths>& files) {
    if (!files || files->empty()) return line("audio files", std::nullopt);
    std::string text;
    std::string_view label = "audio files";
    for (const FilePath& file : *files) {
        text += line(std::exchange(label, ""), file);
    }
    return text;
}

std::string metadataLines(const std::vector<MetadataEntry>& metadata) {
    if (metadata.empty()) return line("metadata", std::nullopt);
    std::size_t columns = 0;
    for (const MetadataEntry& each : metadata) {
        columns = std::max(columns, ShownText(each.description).columns());
    }
    std::string text = "  metadata\n";
    for (const MetadataEntry& each : metadata) {
        const ShownText description(each.description);
        text += "    " + description.text() +
                std::string(columns - description.columns() + 2, ' ') +
                shown(each.value.value_or("")) + "\n";
    }
    return text;
}

std::string infoText(const ClipInfo& info) {
    return shown(info.file) + "\n" +
           line("layout", fmt::format("{} ({})", info.volumeTitle, info.volumeType)) +
           line("frame rate", fmt::format("{} ({})", rateName(info.frameRate),
                                          static_cast<std::uint64_t>(info.frameRate))) +
           line("unique id", info.uniqueIdentifier) + line("start timecode", info.startTimecode) +
           line("end timecode", info.endTimecode) +
           line("drop frame", info.isDropFrame ? "yes" : "no") + line("sidecar", info.sidecar) +
           audioLines(info.audioFiles) + line("spanned", info.isSpanned ? "yes" : "no") +
           line("span key", info.spanKey) + line("volume key", info.volumeKey) +
           metadataLines(info.metadata);
}

// ---- as JSON

using Json = nlohmann::ordered_json;

Json pathJson(const FilePath& path) {
    Json record;
    addPath(record, path);
    return record;
}

Json infoJson(const ClipInfo& info) {
    Json record = pathJson(info.file);
    record["volumeTitle"] = info.volumeTitle;
    record["volumeType"] = info.volumeType;
    record["frameRate"]["name"] = rateName(info.frameRate);
    record["frameRate"]["number"] = static_cast<std::uint64_t>(info.frameRate);
    record["uniqueIdentifier"] = textJson(info.uniqueIdentifier);
    record["startTimecode"] = textJson(info.startTimecode);
    record["endTimecode"] = textJson(info.endTimecode);
    record["dropFrame"] = info.isDropFrame;
    record["sidecar"] = info.sidecar ? pathJson(*info.sidecar) : Json();
    record["audioFiles"] = nullptr;
    if (info.audioFiles) {
        record["audioFiles"] = Json::array();
        for (const FilePath& file : *info.audioFiles) {
            record["audioFiles"].push_back(pathJson(file));
        }
    }
    record["spanned"] = info.isSpanned;
    record["spanKey"] = textJson(info.spanKey);
    record["volumeKey"] = textJson(info.volumeKey);
    record["metadata"] = metadataJson(info.metadata);
    return record;
}

// ---- the command

int tell(const InfoOptions& options, Session& session) {
    reportToolProblems(session.console);
    const bool asJson = options.format == "json";
    auto all = Json::array();
    int status = kDone;
    std::string between;
    const auto complain = [&](const std::string& argument, const std::string& why) {
        session.console.say((argument.empty() ? "''" : shown(argument)) + ": " + why);
        status = kTrouble;
    };
    const FileMatcher matcher(MatchOptions{.isQuick = !options.isExact});
    FileQuestion<std::optional<ClipInfo>> question;
    question.ask = [&matcher](const FilePath& file) -> std::optional<ClipInfo> {
        const auto& utility = matcher.utilityForFile(file);
        const bool isClip = utility.volumeType() != QRXHDMediaVolumeUtilityObject::kNoDefinedVolume;
        return isClip ? std::optional(infoOf(file, utility)) : std::nullopt;
    };
    question.complain = complain;
    question.take = [&](const std::string& argument, const FilePath&,
                        const std::optional<ClipInfo>& info) {
        if (!info) {
            complain(argument, "no layout claims it (qrx explain says why)");
        } else if (asJson) {
            all.push_back(infoJson(*info));
        } else {
            session.output.write(std::exchange(between, "\n") + infoText(*info));
        }
    };
    if (!askAboutFiles(options.files, session, question)) return kTrouble;
    constexpr int kIndent = 2;
    if (asJson) session.output.write(jsonText(all, kIndent) + "\n");
    return status;
}

}  // namespace

void addInfoCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<InfoOptions>();
    auto tools = std::make_shared<ToolOptions>();
    CLI::App& command = *program.add_subcommand("info", "Tell all that is known about a clip");
    command.add_option("FILE", options->files, "The clips")->required();
    command.add_option("-f,--format", options->format, "How it is written")
        ->type_name("text|json")
        ->capture_default_str()
        ->check(CLI::IsMember({"text", "json"}).description(""));
    addExactOption(command, options->isExact);
    addJobsOption(command, *tools);
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        job.tools = *tools;
        job.run = [options](Session& session) { return tell(*options, session); };
    });
}

}  // namespace qrx::tool
