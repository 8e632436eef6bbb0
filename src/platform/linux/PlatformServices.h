#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "platform/ports/ProcessRunner.h"

namespace qrx::platform {

/// What a program may choose when it installs the services.
struct PlatformOptions {
    /// A tool that runs longer is ended; zero means that no tool is ever ended.
    std::chrono::nanoseconds toolTimeLimit{0};
    /// Called on the thread of the run, once the tool has been ended by its time limit.
    std::function<void(const ProcessRequest&)> onToolTimeLimit;
    /// Every run of a tool loads its libraries anew, as if warm parents could not be had.
    bool usesPlainTool = false;
    /// Folder that holds `proc`, `sys` and `dev`.
    std::string systemRoot = "/";
};

/// Puts the services of this system in force. Called once, by main, before any other thread runs.
/// What the host chose (ffmpegPath, resourceFolder) is left as it is.
void installPlatformServices(const PlatformOptions& options = {});

}  // namespace qrx::platform
