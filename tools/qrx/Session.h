#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "platform/ports/Services.h"
#include "qrx/Console.h"
#include "qrx/Interruption.h"
#include "qrx/Output.h"

namespace qrx::tool {

/// What the program's exit status says.
enum ExitStatus : int {
    kDone = 0,
    kTrouble = 1,  ///< something was named on standard error; the rest was done
    kUsage = 2,
};

/// How files are examined, and the external tools run.
struct ToolOptions {
    unsigned jobs = platform::Services::kOneJobPerCore;  ///< files at a time
    std::string ffmpegPath;                              ///< empty: wherever it is installed
    double secondsAtMost = 120;  ///< a tool that runs longer is ended; 0: never
    bool isPlain = false;        ///< no warm parents, every tool is started in full
};

/// What a command works with while it runs.
struct Session {
    Output& output;
    Console& console;
    const Interruption& interruption;
    /// Set when the work is to be given up: by a signal, or because nobody takes the output.
    std::atomic<bool>& isCancelled;
    /// What standard input was when the program started; standard input itself is /dev/null then.
    int originalInput;
};

/// A command that was chosen on the command line, with its options.
struct Job {
    ToolOptions tools;
    std::function<int(Session&)> run;
};

}  // namespace qrx::tool
