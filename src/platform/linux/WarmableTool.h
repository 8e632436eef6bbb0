#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace qrx::platform {

/// Which file stands at a path, and in which state. Nothing that writes to a file, replaces it or
/// changes its permissions leaves all of this as it was.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds since 1970
    std::int64_t changed = 0;   ///< likewise; of the entry

    bool operator==(const FileIdentity&) const = default;
};

/// Nothing when nothing is there. Symbolic links are followed.
[[nodiscard]] std::optional<FileIdentity> identityOf(const std::string& path);

/// What a program that is started now would start with, as far as a warm parent has it from its own
/// start: when any of it changes, the parent is of no use any more.
struct ToolWorld {
    std::string program;
    FileIdentity file;
    /// The list of installed libraries: it is written anew whenever one of them is.
    std::optional<FileIdentity> libraries;
    std::vector<std::string> environment;
    std::array<std::uint64_t, 2UL * RLIMIT_NLIMITS> limits{};
    std::array<std::uint32_t, 4> users{};  ///< real and effective user and group

    bool operator==(const ToolWorld&) const = default;
};

/// Nothing when there is no such program.
[[nodiscard]] std::optional<ToolWorld> worldOf(const std::string& program);

/// Why no warm parent can be made of a program; nothing when one can be tried. Only a dynamically
/// linked program of our own kind, whose start nobody guards, listens to LD_PRELOAD; every other
/// one would run as if it had been asked to.
[[nodiscard]] std::optional<std::string> whyNotWarmable(const std::string& program);

/// Absolute path of the library that makes warm parents, from where this program lies; nothing when
/// there is none, or one that somebody else can write.
[[nodiscard]] std::optional<std::string> warmLibrary();

/// What the process takes off the permissions of new files; nothing where the system does not tell.
/// umask() itself tells only by changing it for every thread.
[[nodiscard]] std::optional<std::uint32_t> fileCreationMask();

}  // namespace qrx::platform
