#include "app/LineWriter.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

#include <climits>
#include <poll.h>
#include <unistd.h>

namespace qrx {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kLookAround{200};  // for the caller's leaving

[[noreturn]] void readerIsGone(int error) {
    throw ReaderGone(std::generic_category().message(error));
}

}  // namespace

LineWriter::LineWriter(platform::BusDescriptor descriptor, platform::Clock::Duration stallLimit,
                       std::stop_token cancelled)
    : descriptor_(std::move(descriptor)),
      stallLimit_(stallLimit),
      cancelled_(std::move(cancelled)) {}

void LineWriter::write(std::string_view text) {
    while (!text.empty()) {
        waitForRoom();
        // A pipe that is ready takes this much without blocking, whatever its mode.
        const std::size_t count = std::min<std::size_t>(text.size(), PIPE_BUF);
        const ssize_t written = ::write(*descriptor_, text.data(), count);
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EAGAIN && errno != EINTR) {
            readerIsGone(errno);
        }
    }
}

void LineWriter::waitForRoom() const {
    const auto end = steady_clock::now() + stallLimit_;
    while (true) {
        if (cancelled_.stop_requested()) throw WritingCancelled{};
        pollfd watched{*descriptor_, POLLOUT, 0};
        const int ready = ::poll(&watched, 1, static_cast<int>(kLookAround.count()));
        if (ready < 0 && errno != EINTR) readerIsGone(errno);
        if (ready > 0 && (watched.revents & POLLOUT) != 0) return;
        if (ready > 0) readerIsGone((watched.revents & POLLNVAL) != 0 ? EBADF : EPIPE);
        if (steady_clock::now() >= end) throw ReaderStalled("nothing was read for too long");
    }
}

}  // namespace qrx
