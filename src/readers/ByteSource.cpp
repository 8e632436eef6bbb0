#include "readers/ByteSource.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qrx {

std::size_t MemoryByteSource::read(std::uint64_t offset, std::span<std::byte> into) const {
    if (offset >= bytes_.size()) return 0;
    const auto rest = bytes_.subspan(static_cast<std::size_t>(offset));
    const std::size_t count = std::min(rest.size(), into.size());
    std::copy_n(rest.begin(), count, into.begin());
    return count;
}

FileByteSource::FileByteSource(const FilePath& path) {
    if (path.find('\0') != FilePath::npos) return;  // the system would see a shorter path

    struct stat item = {};
    if (::stat(path.c_str(), &item) != 0 || !S_ISREG(item.st_mode)) return;
    // O_NONBLOCK: should a FIFO have taken the file's place, opening it must not wait.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0) return;
    if (::fstat(descriptor, &item) != 0 || !S_ISREG(item.st_mode) || item.st_size < 0) {
        ::close(descriptor);
        return;
    }
    descriptor_ = descriptor;
    size_ = static_cast<std::uint64_t>(item.st_size);
}

FileByteSource::~FileByteSource() {
    if (isOpen()) ::close(descriptor_);
}

std::size_t FileByteSource::read(std::uint64_t offset, std::span<std::byte> into) const {
    std::size_t done = 0;
    while (isOpen() && done < into.size() && offset + done < size_) {
        const ssize_t count = ::pread(descriptor_, into.data() + done, into.size() - done,
                                      static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    return done;
}

}  // namespace qrx
