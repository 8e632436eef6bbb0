#include "platform/linux/SmallFile.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/FileDescriptor.h"

namespace qrx::platform {

namespace {

constexpr std::size_t kBlock = std::size_t{64} << 10U;

FileDescriptor openedRegularFile(const std::string& path, LastLink lastLink) {
    if (path.find('\0') != std::string::npos) return {};
    const int link = lastLink == LastLink::refused ? O_NOFOLLOW : 0;
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | link));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    return file;
}

/// Up to `most` bytes.
std::optional<std::string> bytesOf(const FileDescriptor& file, std::size_t most) {
    if (!file.isOpen()) return std::nullopt;
    std::string bytes;
    std::array<char, kBlock> block;  // NOLINT: filled by read
    while (bytes.size() < most) {
        const ssize_t got =
            ::read(file.get(), block.data(), std::min(block.size(), most - bytes.size()));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        bytes.append(block.data(), static_cast<std::size_t>(got));
    }
    return bytes;
}

}  // namespace

std::optional<std::string> smallFile(const std::string& path, std::size_t most, LastLink lastLink) {
    auto bytes = bytesOf(openedRegularFile(path, lastLink), most + 1);
    if (bytes && bytes->size() > most) return std::nullopt;
    return bytes;
}

std::optional<std::string> firstBytes(const std::string& path, std::size_t most) {
    return bytesOf(openedRegularFile(path, LastLink::followed), most);
}

}  // namespace qrx::platform
