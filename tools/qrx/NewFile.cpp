#include "qrx/NewFile.h"

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qrx::tool {

namespace {

constexpr mode_t kPermissions = 0666;  // what the user's mask leaves of them
constexpr int kMostNames = 1000;

[[noreturn]] void fail(int error, const std::string& path) {
    throw std::system_error(error, std::generic_category(), path);
}

/// A file that is written beside the one it is to become.
class Draft {
public:
    explicit Draft(const std::string& target) {
        const std::string folder = target.substr(0, target.rfind('/') + 1);
        const std::string stem = folder + ".qrx-" + std::to_string(::getpid()) + "-";
        for (int i = 0; i < kMostNames && descriptor_ < 0; ++i) {
            path_ = stem + std::to_string(i);
            descriptor_ =
                ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kPermissions);
            if (descriptor_ < 0 && errno != EEXIST) break;
        }
        if (descriptor_ < 0) fail(errno, target);
    }
    ~Draft() {
        if (descriptor_ >= 0) ::close(descriptor_);
        if (!path_.empty()) ::unlink(path_.c_str());
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    void write(std::span<const std::byte> bytes) {
        while (!bytes.empty()) {
            const ssize_t taken = ::write(descriptor_, bytes.data(), bytes.size());
            if (taken < 0 && errno == EINTR) continue;
            if (taken < 0) fail(errno, path_);
            bytes = bytes.subspan(static_cast<std::size_t>(taken));
        }
        // Some file systems find out only now that there is no room.
        if (::fsync(descriptor_) != 0 && errno != EINVAL) fail(errno, path_);
        if (::close(std::exchange(descriptor_, -1)) != 0) fail(errno, path_);
    }

    void become(const std::string& target, Existing existing) {
        if (existing == Existing::kept) {
            if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) ==
                0) {
                path_.clear();
                return;
            }
            if (errno != EINVAL && errno != ENOSYS) fail(errno, target);
            // The file system cannot do that in one step.
            struct stat there {};
            if (::lstat(target.c_str(), &there) == 0) fail(EEXIST, target);
        }
        if (::rename(path_.c_str(), target.c_str()) != 0) fail(errno, target);
        path_.clear();
    }

private:
    std::string path_;
    int descriptor_ = -1;
};

}  // namespace

void writeNewFile(const std::string& path, std::span<const std::byte> contents, Existing existing) {
    Draft draft(path);
    draft.write(contents);
    draft.become(path, existing);
}

}  // namespace qrx::tool
