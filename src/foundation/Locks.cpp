#include "foundation/Locks.h"

#include <optional>

#include <sys/stat.h>
#include <unistd.h>

#include "foundation/Commands.h"
#include "foundation/FileQuestions.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"

namespace qrx {

namespace {

struct FlagTool {
    const char* name;
    const char* lock;
    const char* unlock;
};
constexpr FlagTool kFlagTools[] = {
    {"chflags", "uchg", "nouchg"},
    {"chattr", "+i", "-i"},
};
constexpr int kNoTool = 127;  // as shells answer for a missing command

/// Exit status of the first installed tool, run on everything from `path` down.
int statusOfFlagTool(const FilePath& path, const char* FlagTool::*flag) {
    for (const FlagTool& candidate : kFlagTools) {
        if (const std::optional<FilePath> tool = commandPath(candidate.name)) {
            return commandStatus(*tool, {"-R", candidate.*flag, path});
        }
    }
    return kNoTool;
}

std::string line(const char* flag, const FilePath& path) {
    return std::string("chflags -R ") + flag + " \"" + path + "\"";
}

}  // namespace

bool lockItem(const FilePath& path) {
    platform::systemLog().debug(lockLine(path));
    return statusOfFlagTool(path, &FlagTool::lock) == 0;
}

bool unlockItem(const FilePath& path) {
    platform::systemLog().debug(unlockLine(path));
    const int status = statusOfFlagTool(path, &FlagTool::unlock);
    if (status == 0) return true;
    platform::systemLog().notice("Message: " + std::to_string(status));
    return false;
}

bool unlockFolder(const FilePath& path) {
    return isWritable(path) && unlockItem(path);
}

std::uint32_t permissionsOf(const FilePath& path) {
    constexpr mode_t kPermissionBits = 07777;
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return 0;
    return status.st_mode & kPermissionBits;
}

bool isWritable(const FilePath& path) {
    return !path.empty() && ::access(path.c_str(), W_OK) == 0;
}

std::string lockLine(const FilePath& path) {
    return line("uchg", path);
}

std::string unlockLine(const FilePath& path) {
    return line("nouchg", path);
}

}  // namespace qrx
