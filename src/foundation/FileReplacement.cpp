#include "foundation/FileReplacement.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/PathText.h"

namespace qrx {

namespace {

constexpr mode_t kPermissions = 07777;

/// A file of its own beside another; removed again unless it took the other's place.
class TemporaryNeighbour {
public:
    explicit TemporaryNeighbour(const FilePath& path)
        : name_(joinedPath(withoutLastPathComponent(path), ".qrx-XXXXXX")) {
        if (path.find('/') == FilePath::npos) name_.erase(0, 1);  // relative: in this folder
        descriptor_ = ::mkostemp(name_.data(), O_CLOEXEC);
    }
    ~TemporaryNeighbour() {
        if (descriptor_ < 0) return;
        ::close(descriptor_);
        if (!isInPlace_) ::unlink(name_.c_str());
    }
    TemporaryNeighbour(const TemporaryNeighbour&) = delete;
    TemporaryNeighbour& operator=(const TemporaryNeighbour&) = delete;

    [[nodiscard]] bool write(std::string_view contents) const {
        while (!contents.empty()) {
            const ssize_t written = ::write(descriptor_, contents.data(), contents.size());
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return false;
            contents.remove_prefix(static_cast<std::size_t>(written));
        }
        return true;
    }

    /// Takes over owner and permissions, as far as the file system has them and we may.
    void resemble(const struct stat& other) const {
        const bool ownerIsTheSame =
            ::fchown(descriptor_, other.st_uid, other.st_gid) == 0;  // only root may give away
        static_cast<void>(ownerIsTheSame);
        static_cast<void>(::fchmod(descriptor_, other.st_mode & kPermissions));
    }

    [[nodiscard]] bool takePlaceOf(const FilePath& path) {
        if (::fsync(descriptor_) != 0) return false;
        isInPlace_ = ::rename(name_.c_str(), path.c_str()) == 0;
        return isInPlace_;
    }

    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

private:
    FilePath name_;
    int descriptor_ = -1;
    bool isInPlace_ = false;
};

}  // namespace

bool replaceFileContents(const FilePath& path, std::string_view contents) {
    if (path.find('\0') != FilePath::npos) return false;  // it would name another file
    struct stat now {};
    if (::lstat(path.c_str(), &now) != 0 || !S_ISREG(now.st_mode)) return false;
    // A rename asks the folder's permissions alone; a file that may not be written stays.
    if (::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return false;
    TemporaryNeighbour neighbour(path);
    if (!neighbour.isOpen() || !neighbour.write(contents)) return false;
    neighbour.resemble(now);
    return neighbour.takePlaceOf(path);
}

}  // namespace qrx
