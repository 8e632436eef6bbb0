#include "readers/MxfWindows.h"

#include <algorithm>

namespace qrx {

namespace {

constexpr std::size_t kStartBytes = std::size_t{64} << 10U;

}  // namespace

MxfWindows::MxfWindows(const ByteSource& source)
    : source_(source), size_(static_cast<std::size_t>(std::min(source.size(), kMxfWindowBytes))) {}

MxfWindows::Bytes MxfWindows::startOfHead() {
    return filled(head_, 0, std::min(size_, kStartBytes));
}

MxfWindows::Bytes MxfWindows::head() {
    return filled(head_, 0, size_);
}

MxfWindows::Bytes MxfWindows::tail() {
    if (size_ == source_.size()) return {};
    return filled(tail_, source_.size() - size_, size_);
}

MxfWindows::Bytes MxfWindows::filled(Window& window, std::uint64_t offset, std::size_t wanted) {
    if (!window.bytes) window.bytes = std::make_unique_for_overwrite<std::byte[]>(size_);
    if (window.count < wanted) {
        const std::span<std::byte> room(window.bytes.get() + window.count, wanted - window.count);
        window.count += source_.read(offset + window.count, room);
    }
    return {window.bytes.get(), std::min(window.count, wanted)};
}

}  // namespace qrx
