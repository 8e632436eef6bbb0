#include "foundation/FileQuestions.h"

#include <optional>

#include <sys/stat.h>

namespace qrx {

namespace {

/// Type bits of the item that `path` leads to; nothing when nothing is there.
std::optional<mode_t> typeAt(const FilePath& path) {
    if (path.find('\0') != FilePath::npos) return std::nullopt;
    struct stat item {};
    if (::stat(path.c_str(), &item) != 0) return std::nullopt;
    return item.st_mode & S_IFMT;
}

}  // namespace

bool itemExists(const FilePath& path) {
    return typeAt(path).has_value();
}

bool folderExists(const FilePath& path) {
    return typeAt(path) == mode_t{S_IFDIR};
}

bool fileExists(const FilePath& path) {
    const auto type = typeAt(path);
    return type && *type != S_IFDIR;
}

bool isSpecialFile(const FilePath& path) {
    const auto type = typeAt(path);
    return type && *type != S_IFDIR && *type != S_IFREG;
}

}  // namespace qrx
