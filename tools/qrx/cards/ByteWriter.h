#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qrx::tool {

/// Builds the bytes of a file whose numbers are big-endian.
class ByteWriter {
public:
    ByteWriter& u8(unsigned value) { return number(value, 1); }
    ByteWriter& u16(unsigned value) { return number(value, 2); }
    ByteWriter& u32(std::uint32_t value) { return number(value, 4); }
    ByteWriter& text(std::string_view bytes) {
        bytes_ += bytes;
        return *this;
    }
    ByteWriter& zeros(std::size_t count) {
        bytes_.append(count, '\0');
        return *this;
    }
    /// `block`, preceded by its length as a 32-bit or 16-bit number.
    ByteWriter& block32(const ByteWriter& block) {
        return u32(static_cast<std::uint32_t>(block.size())).text(block.bytes_);
    }
    ByteWriter& block16(const ByteWriter& block) {
        return u16(static_cast<unsigned>(block.size())).text(block.bytes_);
    }
    ByteWriter& block8(const ByteWriter& block) {
        return u8(static_cast<unsigned>(block.size())).text(block.bytes_);
    }

    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    [[nodiscard]] const std::string& bytes() const { return bytes_; }

private:
    ByteWriter& number(std::uint32_t value, unsigned count) {
        for (unsigned left = count; left > 0; --left) {
            bytes_ += static_cast<char>(value >> 8U * (left - 1) & 0xFFU);
        }
        return *this;
    }

    std::string bytes_;
};

}  // namespace qrx::tool
