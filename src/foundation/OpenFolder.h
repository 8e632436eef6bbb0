#pragma once

#include <memory>

#include <dirent.h>

namespace qrx {

/// Whether a symbolic link in the last place of a path is followed.
enum class LastLink { follow, refuse };

/// One folder held open; closed when it goes out of scope.
class OpenFolder {
public:
    /// Holds nothing.
    OpenFolder() = default;
    /// Opens the folder `name` below the descriptor `parent` (or AT_FDCWD). Holds nothing when that
    /// is no folder or may not be read; errno then tells why. Nothing but a folder is ever opened,
    /// so a FIFO or device in its place does no harm.
    OpenFolder(int parent, const char* name, LastLink lastLink);

    [[nodiscard]] explicit operator bool() const { return stream_ != nullptr; }
    /// -1, on which every system call fails, when nothing is held.
    [[nodiscard]] int descriptor() const { return stream_ ? ::dirfd(stream_.get()) : -1; }
    [[nodiscard]] DIR* stream() const { return stream_.get(); }
    void close() { stream_.reset(); }

private:
    struct Closer {
        void operator()(DIR* stream) const { ::closedir(stream); }
    };
    std::unique_ptr<DIR, Closer> stream_;
};

}  // namespace qrx
