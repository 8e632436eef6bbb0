#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace qrx {

/// Reads a run of bytes from its front, and never past its end. A read that finds too few bytes
/// answers nothing and takes nothing, so the caller may try a shorter one.
///
/// Bytes of a file are hostile: bounds are tested by what is left, never by a sum that could wrap.
/// The bytes are not copied and must outlive the cursor and whatever it hands out.
class ByteCursor {
public:
    explicit ByteCursor(std::span<const std::byte> bytes) noexcept : rest_(bytes) {}

    /// Bytes not yet taken.
    [[nodiscard]] std::size_t remaining() const noexcept { return rest_.size(); }
    [[nodiscard]] bool atEnd() const noexcept { return rest_.empty(); }
    [[nodiscard]] std::span<const std::byte> rest() const noexcept { return rest_; }

    /// The next `count` bytes, or nothing when fewer are left.
    [[nodiscard]] std::optional<std::span<const std::byte>> take(std::uint64_t count) noexcept {
        if (count > rest_.size()) return std::nullopt;
        const auto taken = rest_.first(static_cast<std::size_t>(count));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }

    /// Steps over `count` bytes; NO, and no step, when fewer are left.
    [[nodiscard]] bool skip(std::uint64_t count) noexcept { return take(count).has_value(); }

    /// Unsigned numbers, most significant byte first. 24 bits come in a 32-bit number.
    [[nodiscard]] std::optional<std::uint8_t> byte() noexcept { return big<std::uint8_t, 1>(); }
    [[nodiscard]] std::optional<std::uint16_t> bigEndian16() noexcept {
        return big<std::uint16_t, 2>();
    }
    [[nodiscard]] std::optional<std::uint32_t> bigEndian24() noexcept {
        return big<std::uint32_t, 3>();
    }
    [[nodiscard]] std::optional<std::uint32_t> bigEndian32() noexcept {
        return big<std::uint32_t, 4>();
    }
    [[nodiscard]] std::optional<std::uint64_t> bigEndian64() noexcept {
        return big<std::uint64_t, 8>();
    }

    /// Unsigned numbers, least significant byte first.
    [[nodiscard]] std::optional<std::uint16_t> littleEndian16() noexcept {
        return little<std::uint16_t, 2>();
    }
    [[nodiscard]] std::optional<std::uint32_t> littleEndian24() noexcept {
        return little<std::uint32_t, 3>();
    }
    [[nodiscard]] std::optional<std::uint32_t> littleEndian32() noexcept {
        return little<std::uint32_t, 4>();
    }
    [[nodiscard]] std::optional<std::uint64_t> littleEndian64() noexcept {
        return little<std::uint64_t, 8>();
    }

private:
    template <class Number, std::size_t kBytes>
    [[nodiscard]] std::optional<Number> big() noexcept {
        const auto bytes = take(kBytes);
        if (!bytes) return std::nullopt;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < kBytes; ++i) {
            value = (value << 8U) | std::to_integer<std::uint64_t>((*bytes)[i]);
        }
        return static_cast<Number>(value);
    }

    template <class Number, std::size_t kBytes>
    [[nodiscard]] std::optional<Number> little() noexcept {
        const auto bytes = take(kBytes);
        if (!bytes) return std::nullopt;
        std::uint64_t value = 0;
        for (std::size_t i = kBytes; i > 0; --i) {
            value = (value << 8U) | std::to_integer<std::uint64_t>((*bytes)[i - 1]);
        }
        return static_cast<Number>(value);
    }

    std::span<const std::byte> rest_;
};

}  // namespace qrx
