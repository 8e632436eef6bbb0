#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "qrx/Session.h"

namespace qrx::tool {

// Each adds its subcommand to `program`; when the command line chooses it, `job` is set. Both live
// as long as the program.
void addScanCommand(CLI::App& program, Job& job);
void addExplainCommand(CLI::App& program, Job& job);
void addMkcardCommand(CLI::App& program, Job& job);
void addDrivesCommand(CLI::App& program, Job& job);
void addInfoCommand(CLI::App& program, Job& job);
void addSeriesCommand(CLI::App& program, Job& job);
void addCallCommand(CLI::App& program, Job& job);
void addPosterCommand(CLI::App& program, Job& job);
void addMetadataCommand(CLI::App& program, Job& job);
void addOrderCommand(CLI::App& program, Job& job);
void addResetCommand(CLI::App& program, Job& job);
void addReportCommand(CLI::App& program, Job& job);
void addHelpCommand(CLI::App& program, Job& job);

/// Empty when the text is a number of seconds that can be waited for, else what is wrong with it.
[[nodiscard]] std::string whyNoDuration(const std::string& text);

/// --ffmpeg, --tool-limit and --plain-tool.
void addToolOptions(CLI::App& command, ToolOptions& options);
/// --jobs, for commands that examine many files.
void addJobsOption(CLI::App& command, ToolOptions& options);
/// --exact, for commands that run the ffmpeg tool only where a video may be; sets `isExact`.
void addExactOption(CLI::App& command, bool& isExact);

}  // namespace qrx::tool
