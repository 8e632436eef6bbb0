#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "foundation/FilePath.h"

namespace qrx {

/// Bytes that can be read at any place: a file, or memory.
class ByteSource {
public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;

    /// Bytes in all, as they were when the source was opened.
    [[nodiscard]] virtual std::uint64_t size() const = 0;
    /// Fills `into` with the bytes from `offset` on.
    /// @return how many were read; fewer than asked at the end and where reading fails.
    [[nodiscard]] virtual std::size_t read(std::uint64_t offset,
                                           std::span<std::byte> into) const = 0;
};

/// Bytes in memory, which must outlive the source.
class MemoryByteSource final : public ByteSource {
public:
    explicit MemoryByteSource(std::span<const std::byte> bytes) : bytes_(bytes) {}

    [[nodiscard]] std::uint64_t size() const override { return bytes_.size(); }
    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::byte> into) const override;

private:
    std::span<const std::byte> bytes_;
};

/// One regular file. Closed at the end.
class FileByteSource final : public ByteSource {
public:
    /// Opens the file at `path`, or where a link there leads. A FIFO, socket, device or folder is
    /// never opened, not even for a moment: the type is asked first, and asked again of what was
    /// opened in case the path changed its meaning in between. `isOpen` tells how it went.
    explicit FileByteSource(const FilePath& path);
    ~FileByteSource() override;

    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    [[nodiscard]] std::uint64_t size() const override { return size_; }
    [[nodiscard]] std::size_t read(std::uint64_t offset, std::span<std::byte> into) const override;

private:
    int descriptor_ = -1;
    std::uint64_t size_ = 0;
};

}  // namespace qrx
