#include "qrx/Names.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileQuestions.h"

namespace qrx::tool {

namespace {

/// Far beyond the longest path that the system takes.
constexpr std::size_t kLongestName = std::size_t{64} << 10U;

std::string_view withoutLeadingDots(std::string_view path) {
    while (path.starts_with("./")) {
        path.remove_prefix(2);
        while (path.starts_with('/')) {
            path.remove_prefix(1);
        }
    }
    return path == "." ? std::string_view() : path;
}

std::string behindWorkingFolder(std::string_view relative) {
    std::string folder = std::filesystem::current_path().string();
    const std::string_view rest = withoutLeadingDots(relative);
    if (rest.empty()) return folder;
    if (folder != "/") folder += '/';
    return folder.append(rest);
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.ends_with('/')) {
        path.pop_back();
    }
    return path;
}

}  // namespace

std::string absolutePath(std::string_view argument) {
    if (argument.empty()) return {};
    std::string path =
        argument.starts_with('/') ? std::string(argument) : behindWorkingFolder(argument);
    // "clip.mov/" names nothing; without the "/" it would.
    return folderExists(path) ? withoutTrailingSlashes(std::move(path)) : path;
}

std::optional<std::string> whyMissing(const std::string& path) {
    if (path.find('\0') != std::string::npos) return "a name cannot hold a NUL byte";
    struct stat found {};
    if (::stat(path.c_str(), &found) == 0) return std::nullopt;
    return std::generic_category().message(errno);
}

std::optional<std::string> whyNoFile(const std::string& path) {
    if (auto why = whyMissing(path)) return why;
    if (folderExists(path)) return "is a folder; name the files in it";
    return std::nullopt;
}

std::optional<std::string> NameReader::next() {
    while (true) {
        const std::size_t end = pending_.find(separator_);
        if (end != std::string::npos) {
            std::string name = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            if (!name.empty()) return name;
        } else if (atEnd_ || !readMore()) {
            atEnd_ = true;
            if (pending_.empty()) return std::nullopt;
            return std::exchange(pending_, {});
        }
    }
}

bool NameReader::readMore() {
    std::vector<pollfd> watched{pollfd{descriptor_, POLLIN, 0}};
    for (const int wake : wakes_) {
        watched.push_back({wake, POLLIN, 0});
    }
    while (::poll(watched.data(), watched.size(), -1) < 0) {
    }
    const bool isWoken = std::any_of(watched.begin() + 1, watched.end(),
                                     [](const pollfd& wake) { return wake.revents != 0; });
    if (isWoken) {
        pending_.clear();
        return false;
    }
    std::array<char, 16384> bytes{};
    const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return true;
    if (count < 0) throw std::system_error(errno, std::generic_category(), "standard input");
    std::string_view more(bytes.data(), static_cast<std::size_t>(count));
    if (pending_.size() >= kLongestName) {  // one name without end: its rest is dropped
        const std::size_t end = more.find(separator_);
        more.remove_prefix(end == std::string_view::npos ? more.size() : end);
    }
    pending_ += more;
    return count > 0;
}

}  // namespace qrx::tool
