#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qrx::platform {

/// One line of /proc/self/mountinfo, the parts that concern us, escapes undone.
struct MountInfoLine {
    std::string deviceNumber;  ///< "major:minor"
    std::string mountPoint;
    std::string fileSystemType;
    std::string source;  ///< e.g. "/dev/sdb1", "tmpfs", "//server/share"
};

/// The lines of a mount table (proc_pid_mountinfo(5)) in their order; malformed lines are left out.
[[nodiscard]] std::vector<MountInfoLine> parsedMountInfo(std::string_view table);

/// This process's mount table below `root` (proc/self/mountinfo); empty when it cannot be read.
[[nodiscard]] std::vector<MountInfoLine> mountsBelow(const std::filesystem::path& root);

/// `text` with every "\ooo" (a backslash and three octal digits) turned into its byte.
[[nodiscard]] std::string octalEscapesUndone(std::string_view text);

}  // namespace qrx::platform
