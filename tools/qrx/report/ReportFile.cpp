#include "qrx/report/ReportFile.h"

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/PathText.h"

namespace qrx::tool {

namespace {

constexpr mode_t kMode = 0666;  // the user's mask takes from it
constexpr std::size_t kPieceBytes = std::size_t{1} << 18U;

[[noreturn]] void fail(int error) {
    throw std::system_error(error, std::generic_category());
}

FilePath folderOf(const FilePath& path) {
    const FilePath folder = withoutLastPathComponent(path);
    return folder.empty() ? "." : folder;
}

FilePath temporaryName(const FilePath& path) {
    static unsigned count = 0;
    return joinedPath(folderOf(path), fmt::format(".qrx-report-{}-{}", ::getpid(), ++count));
}

}  // namespace

ReportFile::ReportFile(FilePath path, Existing existing)
    : path_(std::move(path)), existing_(existing) {
    struct stat status {};
    if (::lstat(path_.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) fail(EISDIR);
        if (existing_ == Existing::kept) fail(EEXIST);
        if (!S_ISREG(status.st_mode)) fail(EEXIST);  // a link or device is not replaced unawares
    }
    open();
}

void ReportFile::open() {
    descriptor_ = ::open(folderOf(path_).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kMode);
    if (descriptor_ >= 0) return;
    if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) fail(errno);
    // FAT and network file systems know no files without a name.
    temporary_ = temporaryName(path_);
    descriptor_ = ::open(temporary_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kMode);
    if (descriptor_ >= 0) return;
    temporary_.clear();
    fail(errno);
}

ReportFile::~ReportFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void ReportFile::write(std::string_view text) {
    pending_ += text;
    if (pending_.size() >= kPieceBytes) flush();
}

void ReportFile::flush() {
    std::string_view rest = pending_;
    while (!rest.empty()) {
        const ssize_t written = ::write(descriptor_, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            fail(errno);
        }
    }
    pending_.clear();
}

void ReportFile::nameTemporarily() {
    const FilePath name = temporaryName(path_);
    const std::string unnamed = fmt::format("/proc/self/fd/{}", descriptor_);
    if (::linkat(AT_FDCWD, unnamed.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
        fail(errno);
    }
    temporary_ = name;
}

void ReportFile::publish() {
    flush();
    if (::fsync(descriptor_) != 0 && errno != EINVAL) fail(errno);
    if (temporary_.empty()) nameTemporarily();
    if (existing_ == Existing::replaced) {
        if (std::rename(temporary_.c_str(), path_.c_str()) != 0) fail(errno);
    } else if (::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(),
                           RENAME_NOREPLACE) != 0) {
        if (errno != EINVAL && errno != ENOSYS) fail(errno);
        if (::link(temporary_.c_str(), path_.c_str()) != 0) fail(errno);
        ::unlink(temporary_.c_str());
    }
    temporary_.clear();
    const int closed = ::close(std::exchange(descriptor_, -1));
    if (closed != 0 && errno != EINTR) fail(errno);
}

}  // namespace qrx::tool
