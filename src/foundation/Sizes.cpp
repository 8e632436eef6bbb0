#include "foundation/Sizes.h"

#include <cerrno>
#include <span>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "foundation/FileQuestions.h"
#include "foundation/Text.h"
#include "foundation/TreeWalk.h"

namespace qrx {

namespace {

/// A file open for reading.
class ReadableFile {
public:
    /// Non-blocking: the item may have been replaced by a FIFO since it was looked at.
    explicit ReadableFile(const FilePath& path)
        : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
    ~ReadableFile() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    ReadableFile(const ReadableFile&) = delete;
    ReadableFile& operator=(const ReadableFile&) = delete;

    /// Size in bytes; nothing when this is no regular file.
    [[nodiscard]] std::optional<std::uint64_t> size() const {
        struct stat item {};
        const bool regular = ::fstat(descriptor_, &item) == 0 && S_ISREG(item.st_mode);
        if (!regular) return std::nullopt;
        return static_cast<std::uint64_t>(item.st_size);
    }

    /// Fills `bytes` from `offset` on; NO on an error or when the file ends before.
    [[nodiscard]] bool read(std::span<std::byte> bytes, std::uint64_t offset) const {
        while (!bytes.empty()) {
            const ssize_t got =
                ::pread(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
            if (got < 0 && errno == EINTR) continue;
            if (got <= 0) return false;
            bytes = bytes.subspan(static_cast<std::size_t>(got));
            offset += static_cast<std::uint64_t>(got);
        }
        return true;
    }

private:
    int descriptor_;
};

bool hasNul(const FilePath& path) {
    return path.find('\0') != FilePath::npos;
}

}  // namespace

std::optional<std::int64_t> itemSize(const FilePath& path) {
    struct stat item {};
    if (hasNul(path) || ::lstat(path.c_str(), &item) != 0) return std::nullopt;
    return std::int64_t{item.st_size};
}

bool sizesAreEqual(const FilePath& a, const FilePath& b) {
    const auto sizeOfA = itemSize(a);
    return sizeOfA && sizeOfA == itemSize(b);
}

std::optional<std::vector<std::byte>> lastBytes(const FilePath& path, std::uint64_t count) {
    if (hasNul(path) || isSpecialFile(path)) return std::nullopt;
    const ReadableFile file(path);
    const auto size = file.size();
    if (!size || *size < count) return std::nullopt;
    std::vector<std::byte> bytes(static_cast<std::size_t>(count));
    if (!file.read(bytes, *size - count)) return std::nullopt;
    return bytes;
}

std::uint64_t folderSize(const FilePath& folder) {
    std::uint64_t total = 0;
    TreeWalk walk(folder, {}, LastLink::refuse);
    while (walk.next()) {
        if (walk.kind() != EntryKind::folder) total += static_cast<std::uint64_t>(walk.size());
    }
    return total;
}

std::optional<std::uint64_t> freeSpace(const FilePath& path) {
    struct statvfs system {};
    if (hasNul(path) || ::statvfs(path.c_str(), &system) != 0) return std::nullopt;
    return std::uint64_t{system.f_bavail} * std::uint64_t{system.f_frsize};
}

std::string sizeText(std::int64_t bytes) {
    const auto size = static_cast<double>(bytes);
    if (bytes <= 999'999) return fixedDecimals(size / 1'000.0, 2) + " KB";
    const bool megabytes = bytes >= 1'000'001 && bytes <= 999'999'999;
    if (megabytes) return fixedDecimals(size / 1'000'000.0, 2) + " MB";
    return fixedDecimals(size / 1'000'000'000.0, 2) + " GB";
}

}  // namespace qrx
