#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "readers/ByteSource.h"

namespace qrx {

/// A view of a few bytes of a source at a time, which turns many small questions into few reads,
/// and the measure of how much one file may cost: a reader asks `takeStep` before each box or
/// chunk, and after too many steps or reads every further question is answered with nothing, so
/// that a hostile file ends like a short one.
class ByteWindow {
public:
    /// Bytes fetched by one read unless more are asked for. A small movie's header is in the first.
    static constexpr std::size_t kUsualRead = 4096;
    /// Most bytes of one question, and most memory in use.
    static constexpr std::size_t kLargestRead = std::size_t{64} << 10U;
    /// A two-hour fragmented recording has some 10,000 boxes at the top.
    static constexpr std::uint32_t kMostSteps = 1'000'000;
    static constexpr std::uint32_t kMostReads = 100'000;

    explicit ByteWindow(const ByteSource& source) : source_(source) {}

    [[nodiscard]] std::uint64_t size() const { return source_.size(); }

    /// The `count` bytes from `offset` on, valid until the next call; nothing when the source ends
    /// before them, when they cannot be read, or when `count` is over kLargestRead.
    [[nodiscard]] std::optional<std::span<const std::byte>> at(std::uint64_t offset,
                                                               std::size_t count);
    /// Fetches as much as it may of the `count` bytes from `offset` on in one read, unless they are
    /// here.
    void prefetch(std::uint64_t offset, std::uint64_t count);

    /// A copy of the `count` bytes from `offset` on, of any number; nothing when the source ends
    /// before them or they cannot be read. What is allocated is never more than the source holds.
    [[nodiscard]] std::optional<std::vector<std::byte>> copy(std::uint64_t offset,
                                                             std::size_t count) const;

    /// Whether one more box or chunk may be read.
    [[nodiscard]] bool takeStep();

private:
    [[nodiscard]] bool holds(std::uint64_t offset, std::size_t count) const;
    void load(std::uint64_t offset, std::size_t count);

    const ByteSource& source_;
    std::vector<std::byte> bytes_;
    std::uint64_t start_ = 0;
    std::uint32_t steps_ = 0;
    std::uint32_t reads_ = 0;
};

/// Big-endian numbers (ISO base media files, AIFF) and little-endian ones (RIFF) at the front of
/// `bytes`, which must hold them.
[[nodiscard]] std::uint16_t bigEndian16(std::span<const std::byte> bytes);
[[nodiscard]] std::uint32_t bigEndian32(std::span<const std::byte> bytes);
[[nodiscard]] std::uint64_t bigEndian64(std::span<const std::byte> bytes);
[[nodiscard]] std::uint32_t littleEndian32(std::span<const std::byte> bytes);

/// Four characters as one number, for comparison: fourCharacters("moov") == 0x6D6F6F76.
[[nodiscard]] constexpr std::uint32_t fourCharacters(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = (code << 8U) | static_cast<unsigned char>(text[i]);
    return code;
}
[[nodiscard]] std::string fourCharacterText(std::uint32_t code);

/// The bytes as text, unchanged.
[[nodiscard]] std::string textOf(std::span<const std::byte> bytes);

}  // namespace qrx
