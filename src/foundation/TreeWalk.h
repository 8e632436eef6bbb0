#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/FolderChain.h"

namespace qrx {

/// Is told the full path of each folder that could not be read, or not to its end, while the walk
/// goes on.
using UnreadableFolderVisitor = std::function<void(const FilePath& folder)>;

/// Everything below a folder, in the order of a deep enumeration: a folder, then at once all that
/// is below it; name order within each folder; hidden items and dangling links included. Links are
/// listed and never entered, but one given as the start is followed.
///
///     TreeWalk walk(folder);
///     while (walk.next()) use(walk.path());
///
/// Memory goes by the depth of the tree and the width of the folders on the way, not by the number
/// of items; the walk uses no recursion and few descriptors. Every question is about the item that
/// next() stepped to.
class TreeWalk {
public:
    explicit TreeWalk(const FilePath& folder, UnreadableFolderVisitor unreadable = {},
                      LastLink startLink = LastLink::follow);

    /// Whether the start folder is there and could be read.
    [[nodiscard]] bool started() const { return started_; }
    /// Steps to the next item; NO at the end.
    [[nodiscard]] bool next();
    /// Passes over everything below the current item.
    void skipBelow() { entering_ = false; }

    /// Folder as given to the walk, "/", relative path.
    [[nodiscard]] const FilePath& path() const { return path_; }
    [[nodiscard]] std::string_view relativePath() const;
    [[nodiscard]] std::string_view name() const { return chain_.entry().name; }
    /// Number of folders between the start and the item.
    [[nodiscard]] std::size_t depth() const { return chain_.depth(); }
    [[nodiscard]] EntryKind kind() const { return chain_.entry().kind; }

    /// Whether something exists at path(), links followed. Not where the path is longer than the
    /// system accepts.
    [[nodiscard]] bool exists() const;
    /// Whether that is a folder, links followed.
    [[nodiscard]] bool isFolder() const;
    /// Size of the item itself in bytes; of a link the length of its text. 0 when unknown.
    [[nodiscard]] std::int64_t size() const;
    /// Opens the item as a folder, links followed; holds nothing when it is none.
    [[nodiscard]] OpenFolder opened() const;

private:
    void enter();

    FilePath path_;
    UnreadableFolderVisitor unreadable_;
    FolderChain chain_;
    std::vector<std::size_t> prefixLengths_;  ///< of each level, its path with the "/" after it
    bool started_;
    bool entering_ = false;  ///< the next step may go below the current item
};

}  // namespace qrx
