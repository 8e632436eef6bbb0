#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "foundation/FilePath.h"
#include "foundation/FolderListing.h"
#include "foundation/OpenFolder.h"

namespace qrx {

/// The way from a start folder down to the folder under work, for walks that must not depend on
/// the length of a path, the depth of a tree or links that change meanwhile: every step is made
/// from the descriptor of the folder before it, and no step follows a link.
///
/// However deep the tree, few descriptors are open (kMostOpen): those in the middle are closed and
/// opened again on the way back, and used only when they are still the same folders.
class FolderChain {
public:
    static constexpr std::size_t kMostOpen = 32;

    /// Opens the start folder; the chain is empty when it cannot be read.
    FolderChain(const FilePath& start, LastLink lastLink);

    [[nodiscard]] bool isEmpty() const { return levels_.empty(); }
    /// Number of folders below the start; 0 in the start folder itself.
    [[nodiscard]] std::size_t depth() const { return levels_.size() - 1; }

    /// Steps to the next entry of the current folder; NO when there is none left.
    [[nodiscard]] bool next();
    /// The entry that next() stepped to; valid until enter() or leave().
    [[nodiscard]] FolderEntry entry() const;
    /// Whether the current folder was left for one below it and is not to be had any more (moved
    /// while it was not held open). It then has no next entry, and its descriptor is -1.
    [[nodiscard]] bool isLost() const { return !levels_.back().folder; }
    /// Descriptor of the current folder.
    [[nodiscard]] int descriptor() const { return levels_.back().folder.descriptor(); }
    /// Whether the entries of the current folder can be examined and opened, not merely listed.
    [[nodiscard]] bool isSearchable() const { return levels_.back().searchable; }
    /// Whether reading the current folder's entries ended in an error.
    [[nodiscard]] bool isCutShort() const { return levels_.back().entries.isCutShort(); }

    /// Goes into the current entry, a folder; NO (errno tells why) when it cannot be read.
    [[nodiscard]] bool enter();
    /// Back to the folder above, or to the empty chain.
    void leave();

private:
    struct Level {
        OpenFolder folder;  ///< holds nothing while closed for the sake of kMostOpen
        FolderListing entries;
        std::size_t position = 0;  ///< of the entry after the current one
        dev_t device = 0;
        ino_t inode = 0;
        bool searchable = false;
    };

    void append(OpenFolder folder);
    [[nodiscard]] OpenFolder reopened(std::size_t level, const OpenFolder& below) const;

    std::vector<Level> levels_;
};

}  // namespace qrx
