#include "qrx/cards/MediaTool.h"

#include <algorithm>
#include <sstream>
#include <system_error>

#include <fmt/core.h>

#include "foundation/Text.h"
#include "platform/ports/Services.h"
#include "qrx/ShownText.h"
#include "qrx/cards/NewCard.h"
#include "readers/QRXFFmpegObject.h"

namespace qrx::tool {

namespace {

// Each is open until the last is written.
constexpr std::size_t kFilesPerRun = 50;

/// The last line that says something; an error stands there.
std::string lastLine(std::string_view report) {
    std::string last;
    for (const std::string& line : split(report, "\n")) {
        const std::string trimmed = trimBlanksAndLineEnds(line);
        if (!trimmed.empty()) last = trimmed;
    }
    return last.empty() ? "it says nothing" : shown(last);
}

/// The names in the output of "ffmpeg -encoders", whose rows are " V....D libx264  description".
std::vector<std::string> encoderNames(const std::string& listing) {
    std::vector<std::string> names;
    std::istringstream lines(listing);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string flags;
        std::string name;
        if (words >> flags >> name) names.push_back(name);
    }
    return names;
}

void append(std::vector<std::string>& all, std::initializer_list<std::string> more) {
    all.insert(all.end(), more);
}

}  // namespace

MediaTool::MediaTool() : tool_(QRXFFmpegObject().pathOfToolToRun()) {
    encoders_ = encoderNames(output({"-hide_banner", "-encoders"}));
}

std::string MediaTool::encoder(std::initializer_list<std::string_view> wanted) const {
    for (const std::string_view name : wanted) {
        if (std::find(encoders_.begin(), encoders_.end(), name) != encoders_.end()) {
            return std::string(name);
        }
    }
    throw CardProblem(fmt::format("{} cannot encode {}", shown(tool_), *wanted.begin()));
}

void MediaTool::makeMovie(const std::vector<std::string>& options, const std::string& path) const {
    std::vector<std::string> arguments{"-hide_banner", "-nostdin", "-loglevel", "error", "-n"};
    append(arguments, {"-f", "lavfi", "-i", "smptehdbars=size=1920x1080:rate=30000/1001"});
    append(arguments, {"-f", "lavfi", "-i", "sine=frequency=1000:sample_rate=48000"});
    append(arguments, {"-t", "1.001", "-ac", "2", "-pix_fmt", "yuv420p", "-g", "15"});
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(path);
    (void)output(arguments);
}

void MediaTool::rewrap(const std::string& from, const std::vector<NewMedia>& files) const {
    std::vector<std::string> arguments;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (i % kFilesPerRun == 0) {
            arguments = {"-hide_banner", "-nostdin", "-loglevel", "error", "-n", "-i", from};
        }
        append(arguments, {"-c", "copy"});
        arguments.insert(arguments.end(), files[i].options.begin(), files[i].options.end());
        arguments.push_back(files[i].path);
        if (i + 1 == files.size() || (i + 1) % kFilesPerRun == 0) (void)output(arguments);
    }
}

void MediaTool::makeStill(const std::vector<std::string>& options, const std::string& path) const {
    std::vector<std::string> arguments{"-hide_banner", "-nostdin", "-loglevel", "error", "-n"};
    append(arguments, {"-f", "lavfi", "-i", "smptehdbars=size=640x360", "-frames:v", "1"});
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.push_back(path);
    (void)output(arguments);
}

std::string MediaTool::output(const std::vector<std::string>& arguments) const {
    platform::ProcessResult result;
    try {
        result =
            platform::processRunner().run({.program = tool_,
                                           .arguments = arguments,
                                           .standardError = platform::StandardError::captured});
    } catch (const std::system_error& fault) {
        throw CardProblem(fmt::format("media are made by ffmpeg, but {} cannot be run: {}",
                                      shown(tool_), fault.code().message()));
    }
    if (result.endedByTimeLimit) {
        throw CardProblem(fmt::format("{} took too long and was ended", shown(tool_)));
    }
    if (result.exitStatus != 0) {
        throw CardProblem(fmt::format("{} failed with status {}: {}", shown(tool_),
                                      result.exitStatus, lastLine(result.standardError)));
    }
    return result.standardOutput;
}

}  // namespace qrx::tool
