#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace qrx::tool {

/// Standard error: messages, and on a terminal one line of progress that stands below everything
/// else. May be used from any thread.
class Console {
public:
    /// @param descriptor  standard error.
    explicit Console(int descriptor) : descriptor_(descriptor) {}
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// Writes the line "qrx: <message>". The message must be safe to show (see ShownText).
    void say(std::string_view message);

    /// From now on shows what `progress` tells, ten times a second at most. Does nothing when
    /// standard error is no terminal.
    void startProgress();
    void progress(std::uint64_t filesDone, std::uint64_t clipsFound, std::string_view currentFile);
    /// Takes the line away.
    void stopProgress();

    /// Runs `write` while the progress line is out of the way: output that may share its terminal.
    void aside(const std::function<void()>& write);

private:
    void redrawUntilStopped();
    void erase();
    void draw();
    void put(std::string_view text) const;

    struct State {
        std::uint64_t filesDone = 0;
        std::uint64_t clipsFound = 0;
        std::string currentFile;
    };

    int descriptor_;
    std::mutex mutex_;  ///< guards everything below
    std::condition_variable wake_;
    State state_;
    bool isShowing_ = false;  ///< a progress line is wanted
    bool isDrawn_ = false;    ///< one stands on the terminal
    bool isStale_ = false;    ///< it does not show state_
    std::thread painter_;
};

/// The text of the progress line: "1204 files, 37 clips  …/STREAM/00004.MTS", in at most `columns`
/// columns.
[[nodiscard]] std::string progressLine(std::uint64_t filesDone, std::uint64_t clipsFound,
                                       std::string_view currentFile, std::size_t columns);

}  // namespace qrx::tool
