#include "volumes/DriveReset.h"

#include <filesystem>
#include <optional>
#include <span>

#include <fcntl.h>
#include <unistd.h>

#include "foundation/Commands.h"
#include "foundation/FileQuestions.h"
#include "foundation/FolderListing.h"
#include "foundation/PathText.h"
#include "foundation/QRXFileSystemUtility.h"
#include "foundation/Removal.h"
#include "platform/ports/Services.h"
#include "readers/ByteSource.h"
#include "readers/QRXXmlUtility.h"

namespace qrx {

namespace {

using Kind = ResetStep::Kind;

constexpr std::uint64_t kMostCopiedBytes = 1 << 20;  // a card's marker file has three lines

bool makeFolder(const FilePath& path) {
    std::error_code fault;
    std::filesystem::create_directories(path, fault);
    return folderExists(path);
}

std::optional<std::string> contentsOfSmallFile(const FilePath& path) {
    const FileByteSource file(path);
    if (!file.isOpen() || file.size() > kMostCopiedBytes) return std::nullopt;
    std::string contents(static_cast<std::size_t>(file.size()), '\0');
    const auto room = std::as_writable_bytes(std::span(contents));
    if (file.read(0, room) != contents.size()) return std::nullopt;
    return contents;
}

bool copyFile(const FilePath& source, const FilePath& target) {
    const auto contents = contentsOfSmallFile(source);
    if (!contents) return false;
    const int descriptor =
        ::open(target.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (descriptor < 0) return false;
    const ssize_t written = ::write(descriptor, contents->data(), contents->size());
    const bool closed = ::close(descriptor) == 0;
    return closed && written == static_cast<ssize_t>(contents->size());
}

bool removeByTool(const FilePath& path) {
    const FilePath escaped = QRXFileSystemUtility::sharedInstance().escapeFilePathCharacters(
        withoutLastPathComponent(path));
    platform::systemLog().debug("rm " + escaped + "/" + lastPathComponent(path));
    const auto tool = commandPath("rm");
    return tool && commandStatus(*tool, {path}) == 0;
}

bool taken(const ResetStep& step) {
    switch (step.kind) {
        case Kind::remove:
            return removeItem(step.path);
        case Kind::removeByTool:
            return removeByTool(step.path);
        case Kind::clearFiles:
            return clearFolder(step.path);
        case Kind::makeFolder:
            return makeFolder(step.path);
        case Kind::removeXmlFollow:
            return QRXXmlUtility::removeXMLNode(step.argument, step.path, false);
        case Kind::removeXmlNode:
            return QRXXmlUtility::removeXMLNode(step.argument, step.path, true);
        case Kind::copyFile:
            return copyFile(step.argument, step.path);
    }
    return false;
}

FilePath withoutTrailingSlashes(FilePath path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();  // with a "/" at its end the path means a link's target
    }
    return path;
}

}  // namespace

std::string description(const ResetStep& step) {
    switch (step.kind) {
        case Kind::remove:
            return "remove " + step.path + " with all that is in it";
        case Kind::removeByTool:
            return "remove " + step.path;
        case Kind::clearFiles:
            return "remove every file below " + step.path + ", keeping the folders";
        case Kind::makeFolder:
            return "make the folder " + step.path;
        case Kind::removeXmlFollow:
            return "remove from " + step.path + " what follows the element " + step.argument;
        case Kind::removeXmlNode:
            return "remove from " + step.path + " the element " + step.argument +
                   " and what follows it";
        case Kind::copyFile:
            return "copy " + step.argument + " to " + step.path;
    }
    return {};
}

bool carryOut(const ResetPlan& plan, const ResetListener& listener) {
    for (const ResetStep& step : plan) {
        if (!step.logWhenArgumentExists.empty() && itemExists(step.argument)) {
            platform::systemLog().notice(step.logWhenArgumentExists);
        }
        const bool succeeded = taken(step);
        if (listener) listener(step, succeeded);
        if (succeeded) continue;
        if (!step.logOnFailure.empty()) platform::systemLog().notice(step.logOnFailure);
        if (step.mustSucceed) return false;
    }
    return true;
}

ResetPlan planToRemoveEveryEntry(const FilePath& drive) {
    ResetPlan plan;
    for (const std::string& name : namesInFolder(drive).value_or(FilePaths{})) {
        plan.push_back({.kind = Kind::remove, .path = joinedPath(drive, name)});
    }
    return plan;
}

bool isLink(const FilePath& path) {
    return QRXFileSystemUtility::sharedInstance().filePathIsASymbolicLink(
        withoutTrailingSlashes(path));
}

bool isRealFolder(const FilePath& path) {
    return folderExists(path) && !isLink(path);
}

}  // namespace qrx
