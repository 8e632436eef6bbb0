#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx {

using CommandArguments = std::vector<std::string>;

/// Runs `tool` to its end, without a shell, and gives what it wrote to its standard output, however
/// it ended. Throws when it cannot be started.
[[nodiscard]] std::string commandOutput(const FilePath& tool, const CommandArguments& arguments);

/// As `commandOutput`, with every newline removed. Nothing when the tool cannot be started, which
/// is logged as "Ex", and when the run was cancelled, which is not.
[[nodiscard]] std::optional<std::string> commandOutputWithoutNewlines(
    const FilePath& tool, const CommandArguments& arguments);

/// Runs `tool` to its end, without a shell, what it writes being dropped. Its exit status: 128 and
/// the signal's number when a signal ended it, 127 when it cannot be started.
[[nodiscard]] int commandStatus(const FilePath& tool, const CommandArguments& arguments);

/// Full path of the program `name`, by `whereis`; nothing when there is none.
[[nodiscard]] std::optional<FilePath> commandPath(const std::string& name);

/// In a line that `whereis` wrote ("ls: /usr/bin/ls /usr/share/man/man1/ls.1.gz"), the first path
/// of an executable regular file; nothing without one.
[[nodiscard]] std::optional<FilePath> firstProgramNamedIn(std::string_view whereisLine);

}  // namespace qrx
