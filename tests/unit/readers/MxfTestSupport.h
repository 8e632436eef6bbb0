#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "metadata/QRXMXFMetadataWrapper.h"

namespace qrx::test {

using Bytes = std::vector<std::byte>;

[[nodiscard]] inline Bytes bytes(std::initializer_list<int> values) {
    Bytes result;
    for (const int value : values) {
        result.push_back(static_cast<std::byte>(value));
    }
    return result;
}

/// `number` in `width` bytes, most significant first.
[[nodiscard]] inline Bytes bigEndian(std::uint64_t number, int width) {
    Bytes result;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        result.push_back(static_cast<std::byte>((number >> static_cast<unsigned>(shift)) & 0xFFU));
    }
    return result;
}

[[nodiscard]] inline Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes result;
    for (const Bytes& part : parts) {
        result.insert(result.end(), part.begin(), part.end());
    }
    return result;
}

[[nodiscard]] inline Bytes asciiBytes(std::string_view text) {
    Bytes result;
    for (const char c : text) {
        result.push_back(static_cast<std::byte>(c));
    }
    return result;
}

/// What a file writes: text, for TemporaryFolder::write.
[[nodiscard]] inline std::string asText(const Bytes& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

// Items as they stand in a metadata set: local tag, length of the value, value.

[[nodiscard]] inline Bytes item(int tag, const Bytes& value) {
    return joined(
        {bigEndian(static_cast<std::uint64_t>(tag), 2), bigEndian(value.size(), 2), value});
}
[[nodiscard]] inline Bytes startItem(std::uint64_t frames) {
    return item(0x1501, bigEndian(frames, 8));
}
[[nodiscard]] inline Bytes baseItem(std::uint64_t base) {
    return item(0x1502, bigEndian(base, 2));
}
[[nodiscard]] inline Bytes dropFrameItem(int flag) {
    return item(0x1503, bytes({flag}));
}
[[nodiscard]] inline Bytes durationItem(std::uint64_t editUnits) {
    return item(0x0202, bigEndian(editUnits, 8));
}
/// Edit units per second, as a rational.
[[nodiscard]] inline Bytes editRateItem(std::uint64_t numerator, std::uint64_t denominator) {
    return item(0x3F0B, joined({bigEndian(numerator, 4), bigEndian(denominator, 4)}));
}

[[nodiscard]] inline QRXMXFKey keyOf(std::string_view identifier) {
    return QRXMXFMetadataWrapper::mxfKeyForMetadataAttributeKey(identifier);
}

}  // namespace qrx::test
