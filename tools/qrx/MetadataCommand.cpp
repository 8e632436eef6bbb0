#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "app/ClipRecord.h"
#include "qrx/ClipArguments.h"
#include "qrx/ClipMetadata.h"
#include "qrx/Commands.h"
#include "qrx/JsonText.h"
#include "qrx/ShownText.h"
#include "qrx/ToolReports.h"

namespace qrx::tool {

namespace {

constexpr const char* kFooter = R"(
Tells the metadata record of a clip: for each key its identifier, what it means,
and the value that the layout found. Only keys with a value are told; --all tells
the others too, at QRXMediaMetadataNotFound, which is how they are stored and
exchanged with other programs.

Exit status: 0 every file is a clip and was told; 1 a file is missing, or no
layout claims it (it is named on standard error); 2 wrong usage; 130 after Ctrl-C.

Examples:
  qrx metadata /media/me/CARD/BPAV/CLPR/632_0001_01/632_0001_01.MP4
  qrx metadata --all --format json *.mov)";

struct MetadataOptions {
    std::vector<std::string> files;
    bool all = false;
    std::string format = "text";
};

using Cells = std::vector<std::string>;

/// The rows below each other, every column but the last as wide as its widest cell.
std::string columnText(const std::vector<Cells>& rows) {
    std::vector<std::size_t> columns;
    for (const Cells& row : rows) {
        columns.resize(std::max(columns.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            columns[i] = std::max(columns[i], ShownText(row[i]).columns());
        }
    }
    std::string text;
    for (const Cells& row : rows) {
        text += "  ";
        for (std::size_t i = 0; i < row.size(); ++i) {
            const ShownText cell(row[i]);
            text += cell.text();
            if (i + 1 < row.size()) text.append(columns[i] - cell.columns() + 2, ' ');
        }
        text += '\n';
    }
    return text;
}

std::string metadataText(const FilePath& file, const std::vector<MetadataEntry>& entries) {
    if (entries.empty()) return shown(file) + "\n  -\n";
    std::vector<Cells> rows;
    rows.reserve(entries.size());
    for (const MetadataEntry& each : entries) {
        rows.push_back({each.identifier, each.description, each.value.value_or("-")});
    }
    return shown(file) + "\n" + columnText(rows);
}

int tell(const MetadataOptions& options, Session& session) {
    reportToolProblems(session.console);
    const bool asJson = options.format == "json";
    auto all = nlohmann::ordered_json::array();
    std::string between;
    const int status = visitClips(
        options.files, session, [&](const std::string&, const FilePath& file, const auto& utility) {
            const auto entries = metadataEntries(utility.metadataWrapperForVideoFilePath(file),
                                                 options.all ? Entries::all : Entries::found);
            if (session.isCancelled) return;
            if (!asJson) {
                session.output.write(std::exchange(between, "\n") + metadataText(file, entries));
                return;
            }
            nlohmann::ordered_json record;
            addPath(record, file);
            record["volumeTitle"] = utility.volumeTitle();
            record["volumeType"] = utility.volumeType();
            record["metadata"] = metadataJson(entries);
            all.push_back(std::move(record));
        });
    constexpr int kIndent = 2;
    if (asJson && !session.isCancelled) session.output.write(jsonText(all, kIndent) + "\n");
    return status;
}

}  // namespace

void addMetadataCommand(CLI::App& program, Job& job) {
    auto options = std::make_shared<MetadataOptions>();
    auto tools = std::make_shared<ToolOptions>();
    CLI::App& command = *program.add_subcommand("metadata", "Tell the metadata record of a clip");
    command.add_option("FILE", options->files, "The clips")->required();
    command.add_flag("--all", options->all, "Tell also the keys for which nothing was found");
    command.add_option("-f,--format", options->format, "How it is written")
        ->type_name("text|json")
        ->capture_default_str()
        ->check(CLI::IsMember({"text", "json"}).description(""));
    addToolOptions(command, *tools);
    command.footer(kFooter);
    command.callback([options, tools, &job] {
        job.tools = *tools;
        job.run = [options](Session& session) { return tell(*options, session); };
    });
}

}  // namespace qrx::tool
