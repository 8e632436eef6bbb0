#include "foundation/TreeWalk.h"

#include <cerrno>
#include <utility>

#include <climits>
#include <fcntl.h>
#include <sys/stat.h>

namespace qrx {

namespace {

/// Whether a folder that could not be opened is there all the same.
bool isUnreadable(int reason) {
    return reason != ENOENT && reason != ENOTDIR && reason != ELOOP;
}

}  // namespace

TreeWalk::TreeWalk(const FilePath& folder, UnreadableFolderVisitor unreadable, LastLink startLink)
    : path_(folder),
      unreadable_(std::move(unreadable)),
      chain_(folder, startLink),
      started_(!chain_.isEmpty()) {
    const int reason = errno;
    const bool complete = started_ && !chain_.isCutShort();
    const bool missing = !started_ && !isUnreadable(reason);
    if (unreadable_ && !complete && !missing) unreadable_(path_);
    path_ += '/';
    prefixLengths_.push_back(path_.size());
}

bool TreeWalk::next() {
    if (entering_ && kind() == EntryKind::folder) enter();
    entering_ = true;
    while (!chain_.isEmpty()) {
        if (chain_.next()) {
            path_.resize(prefixLengths_.back());
            path_ += chain_.entry().name;
            return true;
        }
        chain_.leave();
        prefixLengths_.pop_back();
    }
    entering_ = false;
    return false;
}

void TreeWalk::enter() {
    const bool entered = chain_.enter();
    const int reason = errno;
    if (unreadable_ && (entered ? chain_.isCutShort() : isUnreadable(reason))) unreadable_(path_);
    if (!entered) return;
    path_ += '/';
    prefixLengths_.push_back(path_.size());
}

std::string_view TreeWalk::relativePath() const {
    return std::string_view(path_).substr(prefixLengths_.front());
}

bool TreeWalk::exists() const {
    const FolderEntry entry = chain_.entry();
    if (entry.kind == EntryKind::vanished || path_.size() >= PATH_MAX) return false;
    if (!chain_.isSearchable()) return false;
    struct stat target {};
    return entry.kind != EntryKind::link ||
           ::fstatat(chain_.descriptor(), entry.name.data(), &target, 0) == 0;
}

bool TreeWalk::isFolder() const {
    const FolderEntry entry = chain_.entry();
    if (entry.kind != EntryKind::link) return entry.kind == EntryKind::folder && exists();
    struct stat target {};
    return path_.size() < PATH_MAX &&
           ::fstatat(chain_.descriptor(), entry.name.data(), &target, 0) == 0 &&
           S_ISDIR(target.st_mode);
}

std::int64_t TreeWalk::size() const {
    struct stat item {};
    const bool known =
        ::fstatat(chain_.descriptor(), chain_.entry().name.data(), &item, AT_SYMLINK_NOFOLLOW) == 0;
    return known ? std::int64_t{item.st_size} : 0;
}

OpenFolder TreeWalk::opened() const {
    return {chain_.descriptor(), chain_.entry().name.data(), LastLink::follow};
}

}  // namespace qrx
