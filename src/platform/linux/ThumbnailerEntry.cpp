#include "platform/linux/ThumbnailerEntry.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <set>
#include <utility>

#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/GlibHandles.h"
#include "platform/linux/SmallFile.h"

namespace qrx::platform {

namespace {

namespace fs = std::filesystem;

constexpr const char* kGroup = "Thumbnailer Entry";
constexpr std::size_t kMostEntryBytes = std::size_t{256} << 10U;
constexpr std::string_view kFileSuffix = ".thumbnailer";
constexpr std::string_view kQuotable = "\"`$\\";  // what a backslash stands before in quotes

/// Puts the badge of a film strip on the picture.
constexpr std::string_view kProgramWithOverlay = "ffmpegthumbnailer";
constexpr std::string_view kOverlayFlag = "-f";

struct KeyFileRelease {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
};
using KeyFile = std::unique_ptr<GKeyFile, KeyFileRelease>;

std::string stringOf(GKeyFile& file, const char* key) {
    const GlibHandle<gchar> text(g_key_file_get_string(&file, kGroup, key, nullptr));
    return text ? text.get() : "";
}

std::vector<std::string> listOf(GKeyFile& file, const char* key) {
    std::vector<std::string> all;
    gchar** const texts = g_key_file_get_string_list(&file, kGroup, key, nullptr, nullptr);
    for (gchar** text = texts; text != nullptr && *text != nullptr; ++text) {
        all.emplace_back(*text);
    }
    g_strfreev(texts);
    return all;
}

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\n';
}

/// Whether a code that stands for a path or a URI is in the argument.
bool holdsPathCode(std::string_view argument) {
    for (std::size_t at = argument.find('%'); at != std::string_view::npos;
         at = argument.find('%', at + 2)) {
        if (at + 1 < argument.size() && argument[at + 1] != '%' && argument[at + 1] != 's') {
            return true;
        }
        if (at + 2 > argument.size()) break;
    }
    return false;
}

/// Takes the arguments of an Exec line apart.
class CommandLine {
public:
    explicit CommandLine(std::string_view text) : rest_(text) {}

    /// Nothing when a quotation does not end, or holds more than one code alone.
    [[nodiscard]] std::optional<std::vector<std::string>> arguments() {
        std::vector<std::string> all;
        while (skipBlanks()) {
            if (!takeArgument()) return std::nullopt;
            if (isQuoted_ && holdsPathCode(argument_) && argument_.size() != 2) return std::nullopt;
            all.push_back(argument_);
        }
        return all;
    }

private:
    bool skipBlanks() {
        while (!rest_.empty() && isBlank(rest_.front())) {
            rest_.remove_prefix(1);
        }
        return !rest_.empty();
    }

    bool takeArgument() {
        argument_.clear();
        isQuoted_ = false;
        while (!rest_.empty() && !isBlank(rest_.front())) {
            const char next = take();
            if (next == '"') {
                isQuoted_ = true;
                if (!takeQuotation()) return false;
            } else {
                argument_ += next;
            }
        }
        return true;
    }

    bool takeQuotation() {
        while (!rest_.empty()) {
            const char next = take();
            if (next == '"') return true;
            const bool isEscape = next == '\\' && !rest_.empty() &&
                                  kQuotable.find(rest_.front()) != std::string_view::npos;
            argument_ += isEscape ? take() : next;
        }
        return false;
    }

    char take() {
        const char next = rest_.front();
        rest_.remove_prefix(1);
        return next;
    }

    std::string_view rest_;
    std::string argument_;
    bool isQuoted_ = false;
};

std::string valueOf(char code, const ThumbnailJob& job) {
    switch (code) {
        case 'i':
            return job.input;
        case 'o':
            return job.output;
        case 's':
            return std::to_string(job.size);
        case '%':
            return "%";
        case 'u': {
            const GlibHandle<gchar> uri(g_filename_to_uri(job.input.c_str(), nullptr, nullptr));
            return uri ? uri.get() : "";
        }
        default:
            return "";
    }
}

std::string expanded(std::string_view argument, const ThumbnailJob& job) {
    std::string text;
    for (std::size_t i = 0; i < argument.size(); ++i) {
        if (argument[i] != '%') {
            text += argument[i];
        } else if (++i < argument.size()) {
            text += valueOf(argument[i], job);
        }
    }
    return text;
}

std::string_view baseName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);  // npos + 1 is 0
}

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}

/// The parts between colons; empty ones are left out.
std::vector<std::string> pathList(std::string_view text) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t colon = std::min(text.find(':'), text.size());
        if (colon > 0) parts.emplace_back(text.substr(0, colon));
        text.remove_prefix(std::min(colon + 1, text.size()));
    }
    return parts;
}

std::vector<std::string> entryNames(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code end;
    for (fs::directory_iterator each(folder, end); !end && each != fs::directory_iterator();
         each.increment(end)) {
        std::string name = each->path().filename().string();
        if (name.ends_with(kFileSuffix)) names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool isExecutable(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

}  // namespace

std::optional<ThumbnailerEntry> ThumbnailerEntry::parsed(std::string_view text) {
    const KeyFile file(g_key_file_new());
    if (g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr) ==
        FALSE) {
        return std::nullopt;
    }
    auto command = CommandLine(stringOf(*file, "Exec")).arguments();
    if (!command || command->empty() || command->front().empty()) return std::nullopt;
    if (baseName(command->front()) == kProgramWithOverlay) std::erase(*command, kOverlayFlag);
    return ThumbnailerEntry{.tryExec = stringOf(*file, "TryExec"),
                            .command = std::move(*command),
                            .mimeTypes = listOf(*file, "MimeType")};
}

std::vector<std::string> ThumbnailerEntry::commandFor(const ThumbnailJob& job) const {
    std::vector<std::string> arguments;
    arguments.reserve(command.size());
    for (const std::string& argument : command) {
        arguments.push_back(expanded(argument, job));
    }
    return arguments;
}

std::vector<ThumbnailerEntry> thumbnailersBelow(const std::vector<std::string>& dataFolders) {
    std::vector<ThumbnailerEntry> all;
    std::set<std::string> seen;
    for (const std::string& dataFolder : dataFolders) {
        const std::string folder = dataFolder + "/thumbnailers";
        for (const std::string& name : entryNames(folder)) {
            if (!seen.insert(name).second) continue;
            std::string path = folder + "/";
            path += name;
            const auto text = smallFile(path, kMostEntryBytes, LastLink::followed);
            if (!text) continue;
            if (auto entry = ThumbnailerEntry::parsed(*text)) all.push_back(std::move(*entry));
        }
    }
    return all;
}

std::vector<std::string> desktopDataFolders() {
    std::vector<std::string> folders;
    const std::string own = variable("XDG_DATA_HOME");
    const std::string home = variable("HOME");
    if (!own.empty()) {
        folders.push_back(own);
    } else if (!home.empty()) {
        folders.push_back(home + "/.local/share");
    }
    const std::string shared = variable("XDG_DATA_DIRS");
    for (std::string& folder : pathList(shared.empty() ? "/usr/local/share:/usr/share" : shared)) {
        folders.push_back(std::move(folder));
    }
    // The base directory format says that a relative one is to be ignored.
    std::erase_if(folders, [](const std::string& folder) { return !folder.starts_with('/'); });
    return folders;
}

std::optional<std::string> executablePath(const std::string& name) {
    if (name.empty()) return std::nullopt;
    if (name.find('/') != std::string::npos) {
        return isExecutable(name) ? std::optional(name) : std::nullopt;
    }
    for (const std::string& folder : pathList(variable("PATH"))) {
        std::string path = folder + "/";
        path += name;
        if (isExecutable(path)) return path;
    }
    return std::nullopt;
}

}  // namespace qrx::platform
