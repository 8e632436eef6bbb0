#include "qrx/Output.h"

#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace qrx::tool {

namespace {

constexpr std::size_t kPieceBytes = std::size_t{64} << 10U;

void waitUntilWritable(int descriptor) {
    pollfd wanted{.fd = descriptor, .events = POLLOUT, .revents = 0};
    (void)::poll(&wanted, 1, -1);
}

/// Error number, 0 when all of `text` was taken.
int writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {  // whoever shares the terminal made it non-blocking
            waitUntilWritable(descriptor);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

}  // namespace

void Output::write(std::string_view text) {
    if (!isGood()) return;
    pending_ += text;
    if (pending_.size() >= kPieceBytes) flush();
}

void Output::flush() {
    if (isGood()) error_ = writeAll(descriptor_, pending_);
    pending_.clear();
}

int Output::finish() {
    flush();
    if (!isGood()) return error_;
    // Network file systems report a full quota only when a file is closed. A copy is closed, so
    // that the number of the standard stream is never given to another file.
    const int copy = ::fcntl(descriptor_, F_DUPFD_CLOEXEC, 3);
    if (copy >= 0 && ::close(copy) != 0 && errno != EINTR) error_ = errno;
    return error_;
}

}  // namespace qrx::tool
