#include "foundation/Removal.h"

#include <cerrno>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FolderChain.h"
#include "foundation/Text.h"

namespace qrx {

namespace {

constexpr std::string_view kKeptFolder = "CONTENTS";

bool removeFile(int folder, const FolderEntry& entry) {
    return ::unlinkat(folder, entry.name.data(), 0) == 0;
}

bool removeEmptyFolder(int folder, const FolderEntry& entry) {
    return ::unlinkat(folder, entry.name.data(), AT_REMOVEDIR) == 0;
}

/// Whether something exists behind `entry`, links followed.
bool entryExists(int folder, const FolderEntry& entry) {
    struct stat item {};
    return ::fstatat(folder, entry.name.data(), &item, 0) == 0;
}

/// Empties the folder in which `chain` stands, everything below it included.
bool removeEverythingIn(FolderChain& chain) {
    const std::size_t start = chain.depth();
    while (true) {
        if (chain.next()) {
            const FolderEntry entry = chain.entry();
            const int folder = chain.descriptor();
            if (entry.kind != EntryKind::folder) {
                if (!removeFile(folder, entry)) return false;
            } else if (!chain.enter() && !removeEmptyFolder(folder, entry)) {
                return false;  // an empty folder can go even when it cannot be read
            }
        } else if (chain.depth() > start) {
            chain.leave();
            if (!removeEmptyFolder(chain.descriptor(), chain.entry())) return false;
        } else {
            return true;
        }
    }
}

/// Without trailing "/"s, which would have the system follow a link.
FilePath itemPath(FilePath path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

bool isRealFolder(const FilePath& path) {
    struct stat item {};
    return ::lstat(path.c_str(), &item) == 0 && S_ISDIR(item.st_mode);
}

}  // namespace

bool removeItem(const FilePath& path) {
    const FilePath item = itemPath(path);
    if (item == "/" || item.find('\0') != FilePath::npos) return false;
    if (!isRealFolder(item)) return ::unlink(item.c_str()) == 0;
    FolderChain chain(item, LastLink::refuse);
    const bool emptied = chain.isEmpty() || removeEverythingIn(chain);
    return emptied && ::rmdir(item.c_str()) == 0;
}

bool clearFolder(const FilePath& folder) {
    FolderChain chain(folder, LastLink::follow);
    if (chain.isEmpty()) return false;
    while (!chain.isEmpty()) {
        if (!chain.next()) {
            if (chain.isCutShort() || chain.isLost()) return false;
            chain.leave();
            continue;
        }
        const FolderEntry entry = chain.entry();
        if (entry.kind == EntryKind::folder) {
            if (!chain.enter()) return false;
        } else if (!entryExists(chain.descriptor(), entry) ||
                   !removeFile(chain.descriptor(), entry)) {
            return false;
        }
    }
    return true;
}

void removeFoldersIn(const FilePath& folder) {
    FolderChain chain(folder, LastLink::follow);
    while (!chain.isEmpty() && chain.next()) {
        const FolderEntry entry = chain.entry();
        if (!entryExists(chain.descriptor(), entry)) return;
        const bool leaves = entry.kind == EntryKind::folder && !contains(entry.name, kKeptFolder);
        if (!leaves) continue;
        if (chain.enter()) {
            if (!removeEverythingIn(chain)) return;
            chain.leave();
        }
        if (!removeEmptyFolder(chain.descriptor(), chain.entry())) return;
    }
}

}  // namespace qrx
