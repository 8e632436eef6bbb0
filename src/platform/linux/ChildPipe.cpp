#include "platform/linux/ChildPipe.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace qrx::platform {

namespace {

constexpr std::size_t kReadSize = std::size_t{64} << 10U;  // what a pipe holds by default

/// The same file under a number that is none of the standard streams. A process that was started
/// with one of them closed would else give the child a pipe end that a later dup2 overwrites.
FileDescriptor aboveStandardStreams(int descriptor) {
    FileDescriptor given(descriptor);
    if (descriptor > STDERR_FILENO) return given;
    FileDescriptor moved(::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!moved.isOpen()) throw std::system_error(errno, std::generic_category(), "pipe");
    return moved;
}

}  // namespace

ChildPipe::ChildPipe(std::size_t mostKept) : mostKept_(mostKept) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    readEnd_ = FileDescriptor(ends[0]);
    writeEnd_ = FileDescriptor(ends[1]);
    if (std::min(ends[0], ends[1]) <= STDERR_FILENO) {
        FileDescriptor movedReadEnd = aboveStandardStreams(readEnd_.release());
        writeEnd_ = aboveStandardStreams(writeEnd_.release());
        readEnd_ = std::move(movedReadEnd);
    }
}

std::size_t ChildPipe::readAtMost(std::size_t count) {
    std::array<char, kReadSize> bytes;  // NOLINT: filled by read
    const ssize_t got = ::read(readEnd_.get(), bytes.data(), std::min(count, bytes.size()));
    if (got < 0 && errno == EINTR) return 0;
    if (got <= 0) {
        readEnd_.close();
        return 0;
    }
    const auto size = static_cast<std::size_t>(got);
    text_.append(bytes.data(), std::min(size, mostKept_ - text_.size()));
    return size;
}

void ChildPipe::readSome() {
    static_cast<void>(readAtMost(kReadSize));
}

void ChildPipe::readWhatIsThere() {
    int there = 0;
    if (!readEnd_.isOpen() || ::ioctl(readEnd_.get(), FIONREAD, &there) != 0) return;
    auto left = static_cast<std::size_t>(std::max(there, 0));
    while (left > 0 && readEnd_.isOpen()) {
        left -= readAtMost(left);
    }
}

}  // namespace qrx::platform
