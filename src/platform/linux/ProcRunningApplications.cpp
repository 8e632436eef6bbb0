#include "platform/linux/ProcRunningApplications.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <system_error>

namespace qrx::platform {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kDeletedMark =
    " (deleted)";  // the kernel's, after the executable's path

/// What /proc/<pid>/status tells.
struct ProcessStatus {
    uid_t realUser = 0;
    char state = '?';
};

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<std::string> contentsOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

/// The first word of the line of `status` that begins with `label`.
std::optional<std::string_view> field(std::string_view status, std::string_view label) {
    const auto line = status.find(label);  // each label begins with the line end before it
    if (line == std::string_view::npos) return std::nullopt;
    std::string_view rest = status.substr(line + label.size());
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
    return rest.substr(0, rest.find_first_of(" \t\n"));
}

std::optional<ProcessStatus> statusOf(const fs::path& process) {
    const auto text = contentsOf(process / "status");
    if (!text) return std::nullopt;
    const auto state = field(*text, "\nState:");
    const auto user = field(*text, "\nUid:");  // real, effective, saved, file system
    if (!state || state->empty() || !user) return std::nullopt;
    const auto number = numberOf<uid_t>(*user);
    if (!number) return std::nullopt;
    return ProcessStatus{*number, state->front()};
}

bool hasEnded(char state) {
    return state == 'Z' || state == 'X' || state == 'x';
}

std::string executableName(const fs::path& process) {
    std::error_code unreadable;
    std::string target = fs::read_symlink(process / "exe", unreadable).string();
    if (unreadable) return {};
    if (target.ends_with(kDeletedMark)) target.resize(target.size() - kDeletedMark.size());
    return target.substr(target.rfind('/') + 1);
}

std::string taskName(const fs::path& process) {
    std::string name = contentsOf(process / "comm").value_or("");
    if (name.ends_with('\n')) name.pop_back();
    return name;
}

std::string firstArgument(const fs::path& process) {
    const std::string all = contentsOf(process / "cmdline").value_or("");
    return all.substr(0, all.find('\0'));
}

std::vector<std::string> displayNamesOf(const fs::path& process) {
    std::vector<std::string> names;
    const auto add = [&](std::string name) {
        if (name.empty() || std::find(names.begin(), names.end(), name) != names.end()) return;
        names.push_back(std::move(name));
    };
    add(executableName(process));
    add(programNameFromArgument(firstArgument(process)).value_or(""));
    add(taskName(process));
    return names;
}

}  // namespace

std::optional<std::string> programNameFromArgument(std::string_view argv0) {
    const bool isTitle = argv0.find(": ") != std::string_view::npos || argv0.ends_with(':');
    if (isTitle) return std::nullopt;
    for (auto blank = argv0.find(' '); blank != std::string_view::npos;
         blank = argv0.find(' ', blank + 1)) {
        const std::string_view next = argv0.substr(blank + 1);
        const bool optionFollows = next.size() > 1 && next[0] == '-' && next[1] != ' ';
        if (optionFollows || next.starts_with('/')) return std::nullopt;
    }
    std::string name(argv0.substr(argv0.rfind('/') + 1));
    if (name.empty()) return std::nullopt;
    return name;
}

std::vector<RunningApplication> ProcRunningApplications::applications() const {
    std::vector<RunningApplication> found;
    const std::int32_t self = currentProcessIdentifier();
    std::error_code failed;
    for (fs::directory_iterator entry(proc_, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const auto identifier = numberOf<std::int32_t>(entry->path().filename().native());
        if (!identifier || *identifier == self) continue;
        const auto status = statusOf(entry->path());
        if (!status || status->realUser != user_ || hasEnded(status->state)) continue;
        found.push_back({*identifier, displayNamesOf(entry->path())});
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return a.processIdentifier < b.processIdentifier;
    });
    return found;
}

}  // namespace qrx::platform
