#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/linux/PropertyListBounds.h"

namespace qrx::platform {

namespace {

using Bytes = std::span<const std::byte>;

constexpr std::string_view kSignature = "bplist00";
// 6 bytes unused, bytes of an offset, bytes of a reference, then three numbers of 8 bytes: how many
// objects, which is the outermost, where the offsets begin.
constexpr std::size_t kTrailerSize = 32;

// High halves of an object's first byte; the low half is its size, kExtended = a count follows.
enum Marker : unsigned {
    kTruth = 0x0,
    kInteger = 0x1,
    kReal = 0x2,
    kData = 0x4,
    kAscii = 0x5,
    kUtf16 = 0x6,
    kUid = 0x8,
    kArray = 0xA,
    kDictionary = 0xD,
};
constexpr unsigned kExtended = 0xF;

bool isPowerUpTo8(std::uint64_t size) {
    return size == 1 || size == 2 || size == 4 || size == 8;
}

/// Bytes of an offset or a reference: libplist itself writes three where they suffice.
bool isPlaceSize(std::uint64_t size) {
    return isPowerUpTo8(size) || size == 3;
}

std::uint64_t bigEndian(Bytes bytes) {
    std::uint64_t number = 0;
    for (const std::byte byte : bytes)
        number = (number << 8U) | std::to_integer<unsigned>(byte);
    return number;
}

bool isAscii(Bytes bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](std::byte byte) {
        return byte != std::byte{0} && std::to_integer<unsigned>(byte) < 0x80;
    });
}

bool isUtf16(Bytes bytes) {
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        const std::uint64_t unit = bigEndian(bytes.subspan(i, 2));
        if (unit == 0) return false;
        if (unit < 0xD800 || unit > 0xDFFF) continue;
        i += 2;
        if (unit > 0xDBFF || i == bytes.size()) return false;
        const std::uint64_t low = bigEndian(bytes.subspan(i, 2));
        if (low < 0xDC00 || low > 0xDFFF) return false;
    }
    return true;
}

class BinaryList {
public:
    explicit BinaryList(Bytes list) : list_(list) {}

    [[nodiscard]] bool isBounded() {
        return hasFrame() && objectIsBounded(topObject_, kMostPropertyListDepth);
    }

private:
    struct Header {
        unsigned marker;
        std::uint64_t low;    // low half of the first byte
        std::uint64_t count;  // the low half, or the count that follows
        std::size_t payload;  // where the object's own bytes begin
    };

    [[nodiscard]] bool hasFrame() {
        if (list_.size() < kSignature.size() + 1 + kTrailerSize) return false;
        const auto* const text = reinterpret_cast<const char*>(list_.data());
        if (std::string_view(text, kSignature.size()) != kSignature) return false;
        const Bytes trailer = list_.last(kTrailerSize);
        offsetSize_ = std::to_integer<std::size_t>(trailer[6]);
        referenceSize_ = std::to_integer<std::size_t>(trailer[7]);
        const std::uint64_t objects = bigEndian(trailer.subspan(8, 8));
        topObject_ = bigEndian(trailer.subspan(16, 8));
        const std::uint64_t table = bigEndian(trailer.subspan(24, 8));
        if (!isPlaceSize(offsetSize_) || !isPlaceSize(referenceSize_)) return false;
        const std::size_t tableEnd = list_.size() - kTrailerSize;
        if (table <= kSignature.size() || table >= tableEnd) return false;
        if (objects == 0 || objects > kMostPropertyListObjects) return false;
        if (objects > (tableEnd - table) / offsetSize_) return false;
        table_ = list_.subspan(static_cast<std::size_t>(table));
        objectsEnd_ = static_cast<std::size_t>(table);
        reached_.assign(static_cast<std::size_t>(objects), false);
        return true;
    }

    [[nodiscard]] std::optional<Header> headerOf(std::uint64_t object) const {
        if (object >= reached_.size()) return std::nullopt;
        const std::uint64_t offset =
            bigEndian(table_.subspan(static_cast<std::size_t>(object) * offsetSize_, offsetSize_));
        if (offset < kSignature.size() || offset >= objectsEnd_) return std::nullopt;
        std::size_t position = static_cast<std::size_t>(offset);
        const auto first = std::to_integer<unsigned>(list_[position++]);
        Header header{first >> 4U, first & 0xFU, first & 0xFU, position};
        const bool counted = header.marker >= kData && header.marker != kUid;
        if (!counted || header.low != kExtended) return header;

        // An integer object follows and holds the count.
        if (position == objectsEnd_) return std::nullopt;
        const auto integer = std::to_integer<unsigned>(list_[position++]);
        if (integer >> 4U != kInteger || (integer & 0xFU) > 3) return std::nullopt;
        const std::size_t size = std::size_t{1} << (integer & 0xFU);
        if (size > objectsEnd_ - position) return std::nullopt;
        header.count = bigEndian(list_.subspan(position, size));
        header.payload = position + size;
        return header;
    }

    /// The object's own bytes; nothing when they would run past the objects.
    [[nodiscard]] std::optional<Bytes> payloadOf(const Header& header, std::uint64_t count,
                                                 std::size_t unit) const {
        if (count > (objectsEnd_ - header.payload) / unit) return std::nullopt;
        return list_.subspan(header.payload, static_cast<std::size_t>(count) * unit);
    }

    [[nodiscard]] bool objectIsBounded(std::uint64_t object, std::size_t depthLeft) {
        const auto header = headerOf(object);
        if (!header || ++mentions_ > kMostPropertyListObjects) return false;
        switch (header->marker) {
            case kArray:
            case kDictionary:
                return containerIsBounded(object, *header, depthLeft);
            case kData:
            case kAscii:
            case kUtf16:
                return unfolds(textOf(*header));
            default:
                return numberIsBounded(*header);
        }
    }

    [[nodiscard]] bool containerIsBounded(std::uint64_t object, const Header& header,
                                          std::size_t depthLeft) {
        const auto at = static_cast<std::size_t>(object);
        if (depthLeft == 0 || reached_[at]) return false;
        reached_[at] = true;
        const bool paired = header.marker == kDictionary;
        const auto references = payloadOf(header, header.count, referenceSize_ * (paired ? 2 : 1));
        if (!references) return false;
        const std::size_t keys = paired ? static_cast<std::size_t>(header.count) : 0;
        for (std::size_t i = 0; i < references->size() / referenceSize_; ++i) {
            const std::uint64_t next =
                bigEndian(references->subspan(i * referenceSize_, referenceSize_));
            if (i < keys && !isText(next)) return false;
            if (!objectIsBounded(next, depthLeft - 1)) return false;
        }
        return true;
    }

    [[nodiscard]] bool isText(std::uint64_t object) const {
        const auto header = headerOf(object);
        return header && (header->marker == kAscii || header->marker == kUtf16);
    }

    /// The bytes of a text or of data; nothing when they are not what the marker says.
    [[nodiscard]] std::optional<Bytes> textOf(const Header& header) const {
        const auto bytes = payloadOf(header, header.count, header.marker == kUtf16 ? 2 : 1);
        if (!bytes || (header.marker == kAscii && !isAscii(*bytes))) return std::nullopt;
        if (header.marker == kUtf16 && !isUtf16(*bytes)) return std::nullopt;
        return bytes;
    }

    [[nodiscard]] bool unfolds(std::optional<Bytes> bytes) {
        if (!bytes || bytes->size() > kMostPropertyListBytes - unfolded_) return false;
        unfolded_ += bytes->size();
        return true;
    }

    [[nodiscard]] bool numberIsBounded(const Header& header) const {
        switch (header.marker) {
            case kTruth:
                return header.low == 8 || header.low == 9;
            case kUid:
                return isPowerUpTo8(header.low + 1) && payloadOf(header, header.low + 1, 1);
            case kReal:
                return (header.low == 2 || header.low == 3) &&
                       payloadOf(header, std::uint64_t{1} << header.low, 1);
            case kInteger:
                break;
            default:
                return false;
        }
        if (header.low > 4) return false;
        const auto bytes = payloadOf(header, std::uint64_t{1} << header.low, 1);
        // 16 bytes are for the numbers of 64 bits that are too large for a sign.
        return bytes && (bytes->size() <= 8 || bigEndian(bytes->first(8)) == 0);
    }

    Bytes list_;
    Bytes table_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::size_t objectsEnd_ = 0;
    std::uint64_t topObject_ = 0;
    std::size_t mentions_ = 0;
    std::size_t unfolded_ = 0;
    std::vector<bool> reached_;
};

}  // namespace

bool isBoundedBinaryPropertyList(std::span<const std::byte> bytes) {
    return bytes.size() <= kMostPropertyListBytes && BinaryList(bytes).isBounded();
}

}  // namespace qrx::platform
