#include "foundation/FolderChain.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace qrx {

FolderChain::FolderChain(const FilePath& start, LastLink lastLink) {
    errno = ENOENT;  // of a path with a NUL
    if (start.find('\0') != FilePath::npos) return;
    OpenFolder folder(AT_FDCWD, start.c_str(), lastLink);
    if (folder) append(std::move(folder));
}

bool FolderChain::next() {
    Level& level = levels_.back();
    if (level.position >= level.entries.size()) return false;
    ++level.position;
    return true;
}

FolderEntry FolderChain::entry() const {
    const Level& level = levels_.back();
    return level.entries[level.position - 1];
}

bool FolderChain::enter() {
    OpenFolder folder(descriptor(), entry().name.data(), LastLink::refuse);
    if (!folder) return false;
    append(std::move(folder));
    return true;
}

void FolderChain::append(OpenFolder folder) {
    Level level;
    struct stat identity {};
    // "." rather than the descriptor itself: that asks for the right to search as well
    level.searchable = ::fstatat(folder.descriptor(), ".", &identity, 0) == 0;
    if (level.searchable || ::fstat(folder.descriptor(), &identity) == 0) {
        level.device = identity.st_dev;
        level.inode = identity.st_ino;
    }
    level.entries = FolderListing(folder);
    level.folder = std::move(folder);
    levels_.push_back(std::move(level));
    // the start folder stays open: it is where everything can be found again
    if (levels_.size() > kMostOpen + 1) levels_[levels_.size() - 1 - kMostOpen].folder.close();
}

void FolderChain::leave() {
    const OpenFolder below = std::move(levels_.back().folder);
    levels_.pop_back();
    if (levels_.empty() || levels_.back().folder) return;
    levels_.back().folder = reopened(levels_.size() - 1, below);
    if (!levels_.back().folder) {
        levels_.back().position = levels_.back().entries.size();
    }
}

OpenFolder FolderChain::reopened(std::size_t level, const OpenFolder& below) const {
    const auto isTheSame = [&](const OpenFolder& folder) {
        struct stat identity {};
        return folder && ::fstat(folder.descriptor(), &identity) == 0 &&
               identity.st_dev == levels_[level].device && identity.st_ino == levels_[level].inode;
    };
    if (below) {
        OpenFolder above(below.descriptor(), "..", LastLink::refuse);
        if (isTheSame(above)) return above;
    }
    // moved, or not to be searched: once more from the start, name by name
    OpenFolder folder;
    for (std::size_t i = 0; i < level; ++i) {
        const int parent = i == 0 ? levels_[0].folder.descriptor() : folder.descriptor();
        const FolderEntry step = levels_[i].entries[levels_[i].position - 1];
        folder = OpenFolder(parent, step.name.data(), LastLink::refuse);
        if (!folder) return {};
    }
    return isTheSame(folder) ? std::move(folder) : OpenFolder();
}

}  // namespace qrx
