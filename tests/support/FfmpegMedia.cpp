#include "support/FfmpegMedia.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qrx::test {

namespace {

struct Finished {
    int exitStatus = 0;
    std::string standardOutput;
    std::string standardError;
};

// Both streams go to files, so that no pipe can fill up.
Finished runTool(const std::string& tool, const std::vector<std::string>& arguments) {
    const TemporaryFolder folder;
    const std::string output = folder / "output";
    const std::string errors = folder / "errors";

    std::vector<char*> argv{const_cast<char*>(tool.c_str())};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, errors.c_str(), O_WRONLY | O_CREAT, 0600);
    pid_t child = 0;
    const int fault = posix_spawnp(&child, tool.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (fault != 0) {
        throw std::runtime_error("media tests need " + tool + ": " + std::strerror(fault));
    }

    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    Finished finished;
    finished.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    finished.standardOutput = fileContents(output);
    finished.standardError = fileContents(errors);
    return finished;
}

std::vector<std::string> fields(const std::string& line, char separator) {
    std::vector<std::string> all;
    std::istringstream text(line);
    for (std::string field; std::getline(text, field, separator);)
        all.push_back(field);
    return all;
}

int wholeNumber(const std::string& text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

ProbedStream streamFromLine(const std::string& line) {
    ProbedStream stream;
    for (const std::string& field : fields(line, '|')) {
        const std::size_t equals = field.find('=');
        if (equals == std::string::npos) continue;
        const std::string key = field.substr(0, equals);
        const std::string value = field.substr(equals + 1);
        if (key == "codec_type") stream.codecType = value;
        if (key == "codec_tag_string") stream.codecTag = value;
        if (key == "disposition:attached_pic") stream.attachedPicture = value == "1";
        if (key == "width") stream.width = wholeNumber(value);
        if (key == "height") stream.height = wholeNumber(value);
    }
    return stream;
}

}  // namespace

FfmpegMedia& FfmpegMedia::shared() {
    static FfmpegMedia media;
    return media;
}

std::string FfmpegMedia::file(const std::string& name, const std::vector<std::string>& arguments) {
    return fileBeside(name, name, arguments);
}

std::string FfmpegMedia::fileBeside(const std::string& name, const std::string& written,
                                    const std::vector<std::string>& arguments) {
    if (const auto known = made_.find(name); known != made_.end()) return known->second;

    std::string path = folder_ / name;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::vector<std::string> all{"-nostdin", "-hide_banner", "-v", "error", "-y"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    all.push_back(folder_ / written);
    const Finished finished = runTool("ffmpeg", all);
    if (finished.exitStatus != 0 || !std::filesystem::exists(path)) {
        throw std::runtime_error("ffmpeg could not write " + name + " (status " +
                                 std::to_string(finished.exitStatus) +
                                 "): " + finished.standardError);
    }
    made_[name] = path;
    return path;
}

std::string FfmpegMedia::text(const std::string& name, const std::string& contents) {
    return folder_.write(name, contents);
}

std::vector<std::string> testPicture() {
    return {"-f", "lavfi", "-i", "testsrc=size=64x48:rate=25:duration=1"};
}

std::vector<std::string> testTone() {
    return {"-f", "lavfi", "-i", "sine=sample_rate=8000:duration=1"};
}

std::vector<std::string> pictureAndTone(const std::vector<std::string>& more) {
    std::vector<std::string> all = testPicture();
    const std::vector<std::string> tone = testTone();
    all.insert(all.end(), tone.begin(), tone.end());
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

std::string ffmpegHelp(const std::string& topic) {
    return runTool("ffmpeg", {"-hide_banner", "-h", topic}).standardOutput;
}

std::vector<ProbedStream> probedStreams(const std::string& path) {
    const Finished finished =
        runTool("ffprobe",
                {"-v", "error", "-show_entries",
                 "stream=codec_type,codec_tag_string,width,height:stream_disposition=attached_pic",
                 "-of", "compact", path});
    std::vector<ProbedStream> streams;
    for (const std::string& line : fields(finished.standardOutput, '\n')) {
        // side data of a stream comes on lines of its own
        if (line.starts_with("stream|")) streams.push_back(streamFromLine(line));
    }
    return streams;
}

}  // namespace qrx::test
