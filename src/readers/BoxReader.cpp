#include "readers/BoxReader.h"

#include <algorithm>

namespace qrx {

namespace {

constexpr std::uint64_t kHeader = 8;        // size and type
constexpr std::uint64_t kLargeHeader = 16;  // size 1, type, 64-bit size
constexpr std::uint32_t kSizeToTheEnd = 0;
constexpr std::uint32_t kLargeSizeFollows = 1;

}  // namespace

std::optional<Box> BoxReader::next() {
    const std::uint64_t left = end_ - std::min(position_, end_);
    if (left < kHeader || !window_.takeStep()) return std::nullopt;
    const auto header = window_.at(position_, kHeader);
    if (!header) return std::nullopt;
    const std::uint32_t shortSize = bigEndian32(*header);
    Box box{bigEndian32(header->subspan(4)), position_, position_ + kHeader, end_};

    std::uint64_t size = shortSize;
    std::uint64_t headerSize = kHeader;
    if (shortSize == kSizeToTheEnd) {
        size = left;
    } else if (shortSize == kLargeSizeFollows) {
        if (left < kLargeHeader) return std::nullopt;
        const auto largeSize = window_.at(position_ + kHeader, 8);
        if (!largeSize) return std::nullopt;
        size = bigEndian64(*largeSize);
        headerSize = kLargeHeader;
    }
    if (size < headerSize) {
        position_ = end_;
        return std::nullopt;
    }
    box.payload = box.start + headerSize;
    box.end = box.start + std::min(size, left);
    position_ = box.end;
    return box;
}

std::optional<Box> firstBox(ByteWindow& window, const Box& container, std::uint32_t type) {
    BoxReader boxes(window, container);
    while (const auto box = boxes.next()) {
        if (box->type == type) return box;
    }
    return std::nullopt;
}

std::optional<std::span<const std::byte>> payloadBytes(ByteWindow& window, const Box& box,
                                                       std::uint64_t offset, std::size_t count) {
    if (offset > box.payloadSize() || count > box.payloadSize() - offset) return std::nullopt;
    return window.at(box.payload + offset, count);
}

}  // namespace qrx
