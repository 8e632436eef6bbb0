#include "foundation/Commands.h"

#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "foundation/Text.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

constexpr const char* kWhereis = "/usr/bin/whereis";
constexpr const char* kProgramsOnly = "-b";  // else manuals and sources are named too
constexpr std::string_view kFaultText = "Ex";

bool isProgram(const FilePath& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

}  // namespace

std::string commandOutput(const FilePath& tool, const CommandArguments& arguments) {
    return platform::processRunner()
        .run({tool, arguments, platform::StandardError::inherited})
        .standardOutput;
}

std::optional<std::string> commandOutputWithoutNewlines(const FilePath& tool,
                                                        const CommandArguments& arguments) {
    try {
        return replaceAll(commandOutput(tool, arguments), "\n", "");
    } catch (const platform::RunCancelled&) {
        return std::nullopt;
    } catch (...) {
        platform::systemLog().notice(kFaultText);
        return std::nullopt;
    }
}

int commandStatus(const FilePath& tool, const CommandArguments& arguments) {
    constexpr int kCannotStart = 127;  // as shells answer
    try {
        return platform::processRunner()
            .run({tool, arguments, platform::StandardError::captured})
            .exitStatus;
    } catch (const std::system_error&) {
        return kCannotStart;
    }
}

std::optional<FilePath> commandPath(const std::string& name) {
    const std::optional<std::string> line =
        commandOutputWithoutNewlines(kWhereis, {kProgramsOnly, name});
    return line ? firstProgramNamedIn(*line) : std::nullopt;
}

std::optional<FilePath> firstProgramNamedIn(std::string_view whereisLine) {
    const std::optional<std::size_t> colon = find(whereisLine, ":");
    if (!colon) return std::nullopt;
    for (const std::string& path : split(whereisLine.substr(*colon + 1), " ")) {
        if (beginsWith(path, "/") && isProgram(path)) return path;
    }
    return std::nullopt;
}

}  // namespace qrx
