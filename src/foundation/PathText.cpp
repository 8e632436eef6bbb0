#include "foundation/PathText.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <pwd.h>

#include <unistd.h>

namespace qrx {

namespace {

/// Without trailing "/"s; a path of slashes only keeps one.
std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

/// Position of the "." that begins the extension of `name`, a single component.
std::optional<std::size_t> extensionDot(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return std::nullopt;
    return dot;
}

/// The names between the slashes, empty ones dropped.
std::vector<std::string_view> names(std::string_view path) {
    std::vector<std::string_view> found;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (end > 0) found.push_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return found;
}

/// Home folder of the user `name`, of the current user for ""; "" when there is none.
std::string homeFolder(const std::string& name) {
    if (name.empty()) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody here changes the environment
        const char* const home = std::getenv("HOME");
        if (home != nullptr && *home != '\0') return home;
    }
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 16384> buffer{};
    if (name.empty()) {
        ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
    } else {
        ::getpwnam_r(name.c_str(), &entry, buffer.data(), buffer.size(), &found);
    }
    return found != nullptr && found->pw_dir != nullptr ? found->pw_dir : "";
}

std::string tildeExpanded(std::string_view path) {
    if (!path.starts_with('~')) return std::string(path);
    const std::size_t end = std::min(path.find('/'), path.size());
    const std::string home = homeFolder(std::string(path.substr(1, end - 1)));
    return home.empty() ? std::string(path) : home + std::string(path.substr(end));
}

std::string withoutPrivate(std::string path) {
    constexpr std::string_view kPrivate = "/private";
    for (const std::string_view folder : {"/private/tmp", "/private/var", "/private/etc"}) {
        const bool below = path.starts_with(folder) &&
                           (path.size() == folder.size() || path[folder.size()] == '/');
        if (below) return path.substr(kPrivate.size());
    }
    return path;
}

}  // namespace

FilePath joinedPath(std::string_view folder, std::string_view name) {
    FilePath path;
    path.reserve(folder.size() + 1 + name.size());
    return path.append(folder).append("/").append(name);
}

std::string_view lastPathComponentView(std::string_view path) {
    const std::string_view trimmed = withoutTrailingSlashes(path);
    if (trimmed == "/") return trimmed;
    const std::size_t slash = trimmed.rfind('/');
    return slash == std::string_view::npos ? trimmed : trimmed.substr(slash + 1);
}

std::string lastPathComponent(std::string_view path) {
    return std::string(lastPathComponentView(path));
}

std::string_view withoutLastPathComponentView(std::string_view path) {
    const std::string_view trimmed = withoutTrailingSlashes(path);
    const std::size_t slash = trimmed.rfind('/');
    if (slash == std::string_view::npos) return {};
    return withoutTrailingSlashes(trimmed.substr(0, slash + 1));
}

FilePath withoutLastPathComponent(std::string_view path) {
    return FilePath(withoutLastPathComponentView(path));
}

std::string pathExtension(std::string_view path) {
    const std::string_view name = lastPathComponentView(path);
    const auto dot = extensionDot(name);
    return dot ? std::string(name.substr(*dot + 1)) : std::string();
}

FilePath withoutPathExtension(std::string_view path) {
    const std::string_view trimmed = withoutTrailingSlashes(path);
    const std::string_view name = lastPathComponentView(trimmed);
    const auto dot = extensionDot(name);
    if (!dot || name == "..") return FilePath(trimmed);
    return FilePath(trimmed.substr(0, trimmed.size() - name.size() + *dot));
}

std::vector<std::string> pathComponents(std::string_view path) {
    std::vector<std::string> components;
    if (path.starts_with('/')) components.emplace_back("/");
    const auto between = names(path);
    components.insert(components.end(), between.begin(), between.end());
    if (path.ends_with('/') && !between.empty()) components.emplace_back("/");
    return components;
}

FilePath standardisedPath(std::string_view path) {
    const std::string expanded = tildeExpanded(path);
    const bool absolute = expanded.starts_with('/');
    std::vector<std::string_view> kept;
    for (const std::string_view name : names(expanded)) {
        if (name == "." && (absolute || !kept.empty())) continue;
        if (name == ".." && absolute) {
            if (!kept.empty()) kept.pop_back();
            continue;
        }
        kept.push_back(name);
    }
    FilePath result;
    for (const std::string_view name : kept) {
        if (absolute || !result.empty()) result += '/';
        result += name;
    }
    if (absolute && result.empty()) return "/";
    return withoutPrivate(std::move(result));
}

}  // namespace qrx
