#include "readers/ByteWindow.h"

#include <algorithm>

namespace qrx {

namespace {

template <class Number>
Number bigEndian(std::span<const std::byte> bytes) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        number = static_cast<Number>((number << 8U) | std::to_integer<Number>(bytes[i]));
    }
    return number;
}

}  // namespace

std::optional<std::span<const std::byte>> ByteWindow::at(std::uint64_t offset, std::size_t count) {
    if (offset > size() || count > size() - offset || count > kLargestRead) return std::nullopt;
    if (!holds(offset, count)) {
        load(offset, std::max(count, kUsualRead));
        if (!holds(offset, count)) return std::nullopt;
    }
    return std::span(bytes_).subspan(static_cast<std::size_t>(offset - start_), count);
}

void ByteWindow::prefetch(std::uint64_t offset, std::uint64_t count) {
    if (offset >= size()) return;
    const std::uint64_t rest = std::min(count, size() - offset);
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(rest, kLargestRead));
    if (!holds(offset, wanted)) load(offset, std::max(wanted, kUsualRead));
}

std::optional<std::vector<std::byte>> ByteWindow::copy(std::uint64_t offset,
                                                       std::size_t count) const {
    if (offset > size() || count > size() - offset) return std::nullopt;
    std::vector<std::byte> bytes(count);
    if (source_.read(offset, bytes) != count) return std::nullopt;
    return bytes;
}

bool ByteWindow::takeStep() {
    if (steps_ >= kMostSteps) return false;
    ++steps_;
    return true;
}

bool ByteWindow::holds(std::uint64_t offset, std::size_t count) const {
    if (offset < start_ || offset - start_ > bytes_.size()) return false;
    return count <= bytes_.size() - static_cast<std::size_t>(offset - start_);
}

void ByteWindow::load(std::uint64_t offset, std::size_t count) {
    bytes_.clear();
    start_ = offset;
    if (reads_ >= kMostReads) return;
    ++reads_;
    const std::uint64_t rest = size() - offset;
    bytes_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(count, rest)));
    bytes_.resize(source_.read(offset, bytes_));
}

std::uint16_t bigEndian16(std::span<const std::byte> bytes) {
    return bigEndian<std::uint16_t>(bytes);
}

std::uint32_t bigEndian32(std::span<const std::byte> bytes) {
    return bigEndian<std::uint32_t>(bytes);
}

std::uint64_t bigEndian64(std::span<const std::byte> bytes) {
    return bigEndian<std::uint64_t>(bytes);
}

std::uint32_t littleEndian32(std::span<const std::byte> bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = 4; i > 0; --i)
        number = (number << 8U) | std::to_integer<std::uint32_t>(bytes[i - 1]);
    return number;
}

std::string fourCharacterText(std::uint32_t code) {
    std::string text(4, ' ');
    for (std::size_t i = 0; i < 4; ++i)
        text[3 - i] = static_cast<char>((code >> (8 * i)) & 0xFFU);
    return text;
}

std::string textOf(std::span<const std::byte> bytes) {
    std::string text(bytes.size(), '\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](std::byte b) { return std::to_integer<char>(b); });
    return text;
}

}  // namespace qrx
