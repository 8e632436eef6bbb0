#pragma once

#include <utility>

#include <unistd.h>

namespace qrx::platform {

/// Owns one open descriptor, or none (-1).
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    ~FileDescriptor() { close(); }
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            close();
            descriptor_ = std::exchange(other.descriptor_, -1);
        }
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] int get() const { return descriptor_; }
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    /// Gives the descriptor up without closing it.
    [[nodiscard]] int release() { return std::exchange(descriptor_, -1); }
    void close() {
        if (isOpen()) ::close(release());
    }

private:
    int descriptor_ = -1;
};

}  // namespace qrx::platform
