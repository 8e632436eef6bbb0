#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>
#include <unistd.h>

#include "platform/ports/RunningApplications.h"

namespace qrx::platform {

/// The processes of one user, from /proc.
///
/// A process is shown under the base name of its executable, the base name of its argv[0] and the
/// kernel's name of its task: a host that is a script, or that was started under another name, is
/// known by the second or the third only.
class ProcRunningApplications final : public RunningApplications {
public:
    /// `root` is the folder that holds `proc`: "/" in production. `user` owns the processes told.
    explicit ProcRunningApplications(const std::filesystem::path& root = "/",
                                     uid_t user = ::getuid())
        : proc_(root / "proc"), user_(user) {}

    [[nodiscard]] std::vector<RunningApplication> applications() const override;
    [[nodiscard]] std::int32_t currentProcessIdentifier() const override { return ::getpid(); }

private:
    std::filesystem::path proc_;
    uid_t user_;
};

/// The base name of `argv0` when that is the path or name of a program; nothing when the process
/// has written a title over it ("nginx: worker process") or its whole command line into it.
[[nodiscard]] std::optional<std::string> programNameFromArgument(std::string_view argv0);

}  // namespace qrx::platform
