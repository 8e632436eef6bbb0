#include "qrx/Console.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>

#include <fmt/core.h>
#include <unistd.h>

#include "qrx/ShownText.h"
#include "qrx/Terminal.h"

namespace qrx::tool {

namespace {

constexpr auto kPause = std::chrono::milliseconds(100);
constexpr std::string_view kEraseLine = "\r\x1b[K";

bool canDraw(int descriptor) {
    const char* const kind = std::getenv("TERM");
    return isTerminal(descriptor) && (kind == nullptr || std::string_view(kind) != "dumb");
}

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

std::string progressLine(std::uint64_t filesDone, std::uint64_t clipsFound,
                         std::string_view currentFile, std::size_t columns) {
    const std::string counts =
        counted(filesDone, "file", "files") + ", " + counted(clipsFound, "clip", "clips") + "  ";
    if (counts.size() >= columns) return counts.substr(0, columns);
    return counts + ShownText(currentFile).fitted(columns - counts.size());
}

Console::~Console() {
    stopProgress();
}

void Console::say(std::string_view message) {
    aside([&] { put(fmt::format("qrx: {}\n", message)); });
}

void Console::startProgress() {
    if (painter_.joinable() || !canDraw(descriptor_)) return;
    {
        const std::lock_guard lock(mutex_);
        isShowing_ = true;
    }
    painter_ = std::thread([this] { redrawUntilStopped(); });
}

void Console::progress(std::uint64_t filesDone, std::uint64_t clipsFound,
                       std::string_view currentFile) {
    if (!painter_.joinable()) return;
    const std::lock_guard lock(mutex_);
    state_.filesDone = filesDone;
    state_.clipsFound = clipsFound;
    state_.currentFile = currentFile;
    isStale_ = true;
}

void Console::stopProgress() {
    if (!painter_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        isShowing_ = false;
    }
    wake_.notify_all();
    painter_.join();
}

void Console::aside(const std::function<void()>& write) {
    const std::lock_guard lock(mutex_);
    erase();
    write();
}

void Console::redrawUntilStopped() {
    std::unique_lock lock(mutex_);
    while (isShowing_) {
        if (isStale_) draw();
        wake_.wait_for(lock, kPause, [this] { return !isShowing_; });
    }
    erase();
}

void Console::erase() {
    if (!isDrawn_) return;
    put(kEraseLine);
    isDrawn_ = false;
    isStale_ = true;
}

void Console::draw() {
    // The last column stays free: a character in it makes some terminals go to the next line.
    const std::size_t columns = std::max<std::size_t>(terminalColumns(descriptor_), 2) - 1;
    put(std::string(kEraseLine) +
        progressLine(state_.filesDone, state_.clipsFound, state_.currentFile, columns));
    isDrawn_ = true;
    isStale_ = false;
}

void Console::put(std::string_view text) const {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor_, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return;  // nobody is left to tell
        }
    }
}

}  // namespace qrx::tool
