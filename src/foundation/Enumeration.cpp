#include "foundation/Enumeration.h"

#include <climits>

#include "foundation/FileQuestions.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"

namespace qrx {

namespace {

bool isHidden(std::string_view name) {
    return beginsWith(name, ".");
}

/// Steps to the next item that is neither hidden itself nor in a hidden folder at the top level.
bool nextNotHidden(TreeWalk& walk) {
    while (walk.next()) {
        if (!isHidden(walk.name())) return true;
        // KEPT: a hidden folder further down is passed over itself, what it holds is not.
        if (walk.depth() == 0) walk.skipBelow();
    }
    return false;
}

}  // namespace

bool SourceFileWalk::next() {
    if (!nextNotHidden(walk_)) return false;
    if (walk_.path().size() >= PATH_MAX) walk_.skipBelow();  // nothing there can be opened
    return true;
}

bool SourceFileWalk::isFile() const {
    return walk_.exists() && !walk_.isFolder();
}

bool forEachSourceFile(const FilePath& folder, const SourceFileVisitor& visit,
                       const UnreadableFolderVisitor& unreadable) {
    SourceFileWalk walk(folder, unreadable);
    while (walk.next()) {
        if (walk.isFile() && !visit(walk.path())) return false;
    }
    return true;
}

FilePaths sourceFiles(const FilePath& folder) {
    FilePaths files;
    forEachSourceFile(folder, [&files](const FilePath& file) {
        files.push_back(file);
        return true;
    });
    return files;
}

MeasuredFiles measuredSourceFiles(const FilePath& folder, Folders folders) {
    MeasuredFiles measured;
    TreeWalk walk(folder);
    while (nextNotHidden(walk)) {
        if (!walk.exists()) continue;
        const bool isFolder = walk.isFolder();
        if (isFolder && folders == Folders::left) continue;
        measured.paths.push_back(walk.path());
        if (isFolder) continue;
        measured.files += 1;
        measured.bytes += walk.size();
    }
    return measured;
}

FilePaths shallowSourceFiles(const FilePath& folder, Hidden hidden) {
    FilePaths paths;
    TreeWalk walk(folder);
    while (walk.next()) {
        walk.skipBelow();
        if (hidden == Hidden::ignored && isHidden(walk.name())) continue;
        if (walk.exists()) paths.push_back(walk.path());
    }
    return paths;
}

FolderContents contentsOf(const FilePath& folder, Hidden hidden) {
    FolderContents contents;
    TreeWalk walk(folder);
    while (walk.next()) {
        walk.skipBelow();
        if (hidden == Hidden::ignored && isHidden(walk.name())) continue;
        if (!walk.exists()) continue;
        (walk.isFolder() ? contents.folders : contents.files).push_back(walk.path());
    }
    return contents;
}

FilePaths foldersBelow(const FilePath& folder) {
    FilePaths folders;
    TreeWalk walk(folder);
    while (nextNotHidden(walk)) {
        if (walk.isFolder()) folders.push_back(walk.path());
    }
    return folders;
}

std::uint64_t numberOfFilesBelow(const FilePath& folder) {
    std::uint64_t files = 0;
    TreeWalk walk(folder);
    while (walk.next()) {
        if (walk.exists() && !walk.isFolder()) ++files;
    }
    return files;
}

std::optional<FilePath> firstFileContaining(std::string_view pattern, const FilePath& folder) {
    const auto names = namesInFolder(folder);
    if (!names) return std::nullopt;
    for (const std::string& name : *names) {
        if (contains(name, pattern)) return joinedPath(folder, name);
    }
    return std::nullopt;
}

std::optional<std::vector<std::string>> relativePathsBelow(const FilePath& folder) {
    TreeWalk walk(folder);
    if (!walk.started()) return std::nullopt;
    std::vector<std::string> paths;
    while (walk.next()) {
        paths.emplace_back(walk.relativePath());
    }
    return paths;
}

}  // namespace qrx
