#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/TreeWalk.h"

namespace qrx {

// The lists that can be taken of a folder. Every full path is the folder as given, "/", and the
// name or relative path. All are in name order; a folder that is missing or cannot be read counts
// as empty unless an operation says otherwise.

enum class Hidden { ignored, included };
enum class Folders { left, counted };

/// Answers whether to go on. The path is valid during the call only.
using SourceFileVisitor = std::function<bool(const FilePath& file)>;

/// Shows `visit` each item below `folder` that is not a folder, in the order of a deep enumeration,
/// as it is found: the first items of a large tree are shown long before its end is read. Left out
/// are items whose name begins with ".", everything in hidden folders at the top level (hidden
/// folders further down are not tested) and dangling links. A link to a file counts as a file.
///
/// @param unreadable  is told each folder that could not be read; may be empty.
/// @return  NO when `visit` ended the walk. What `visit` throws comes through.
bool forEachSourceFile(const FilePath& folder, const SourceFileVisitor& visit,
                       const UnreadableFolderVisitor& unreadable = {});

/// The walk of forEachSourceFile, a step at a time, for those who must be able to leave it between
/// two files that lie far apart.
///
///     SourceFileWalk walk(folder);
///     while (walk.next()) if (walk.isFile()) use(walk.path());
class SourceFileWalk {
public:
    explicit SourceFileWalk(const FilePath& folder, UnreadableFolderVisitor unreadable = {})
        : walk_(folder, std::move(unreadable)) {}

    /// Steps to the next item, a folder perhaps; NO at the end.
    [[nodiscard]] bool next();
    /// Whether the item is one that forEachSourceFile shows.
    [[nodiscard]] bool isFile() const;
    [[nodiscard]] const FilePath& path() const { return walk_.path(); }

private:
    TreeWalk walk_;
};

/// The items that forEachSourceFile shows.
[[nodiscard]] FilePaths sourceFiles(const FilePath& folder);

/// A list of paths with what it counted.
struct MeasuredFiles {
    FilePaths paths;
    std::uint64_t files = 0;  ///< folders not counted
    std::int64_t bytes = 0;   ///< sizes of the items themselves: of a link, the length of its text
};

/// As `sourceFiles`, with numbers; Folders::counted puts the folders among the paths.
[[nodiscard]] MeasuredFiles measuredSourceFiles(const FilePath& folder, Folders folders);

/// One level: what exists in `folder`, folders among it.
[[nodiscard]] FilePaths shallowSourceFiles(const FilePath& folder, Hidden hidden);

/// One level, folders apart.
struct FolderContents {
    FilePaths files;
    FilePaths folders;  ///< links to folders too
};
[[nodiscard]] FolderContents contentsOf(const FilePath& folder, Hidden hidden);

/// Every folder below, links to folders too, except those whose name begins with "." and those in a
/// hidden folder at the top level.
[[nodiscard]] FilePaths foldersBelow(const FilePath& folder);

/// Number of items below that exist and are no folders, hidden ones included.
[[nodiscard]] std::uint64_t numberOfFilesBelow(const FilePath& folder);

/// Full path of the first entry, one level down, whose name contains `pattern` as plain text.
[[nodiscard]] std::optional<FilePath> firstFileContaining(std::string_view pattern,
                                                          const FilePath& folder);

/// The relative paths of everything below: the deep enumeration itself, nothing left out. Nothing
/// when `folder` is missing or cannot be read.
[[nodiscard]] std::optional<std::vector<std::string>> relativePathsBelow(const FilePath& folder);

}  // namespace qrx
