#include "foundation/UniqueNames.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "foundation/FileQuestions.h"
#include "foundation/PathText.h"

namespace qrx {

namespace {

/// stem-2suffix, stem-3suffix, ...: the first at which nothing exists.
FilePath firstFreeNumbered(std::string_view stem, std::string_view suffix) {
    for (std::uint64_t number = 2;; ++number) {
        FilePath candidate(stem);
        candidate.append("-").append(std::to_string(number)).append(suffix);
        if (!itemExists(candidate)) return candidate;
    }
}

}  // namespace

FilePath uniquePath(const FilePath& path) {
    if (!itemExists(path)) return path;
    const bool isFolder = folderExists(path);
    const std::string extension = pathExtension(path);
    const std::string suffix = isFolder ? std::string() : "." + extension;
    const FilePath stem =
        joinedPath(withoutLastPathComponent(path), withoutPathExtension(lastPathComponent(path)));
    // KEPT: a file without extension gets a lone point, and then a number at once
    const bool numberAtOnce = !isFolder && extension.empty();
    FilePath unnumbered = stem + suffix;
    if (!numberAtOnce && !itemExists(unnumbered)) return unnumbered;
    return firstFreeNumbered(stem, suffix);
}

FilePath createUniqueFolder(const FilePath& path) {
    FilePath unique = uniquePath(path);
    if (unique.find('\0') != FilePath::npos) return unique;
    std::error_code outcome;  // not told to the caller: the path is the answer either way
    std::filesystem::create_directories(unique, outcome);
    return unique;
}

FilePath freeFolderPath(const FilePath& path) {
    return itemExists(path) ? firstFreeNumbered(path, "") : path;
}

}  // namespace qrx
