#pragma once

#include <string_view>

namespace qrx {

// The identifiers that MXF adds. The text of each is its own name, which hosts rely on.

inline constexpr std::string_view QRXMXFMediaMetadataRoundedVideoFrameRateKey =
    "QRXMXFMediaMetadataRoundedVideoFrameRateKey";
inline constexpr std::string_view QRXMXFMediaMetadataSMPTEPrefixKey =
    "QRXMXFMediaMetadataSMPTEPrefixKey";
inline constexpr std::string_view QRXMXFMediaMetadataHeaderKey = "QRXMXFMediaMetadataHeaderKey";
inline constexpr std::string_view QRXMXFMediaMetadataVersionKey = "QRXMXFMediaMetadataVersionKey";
inline constexpr std::string_view QRXMXFMediaMetadataUMIDKey = "QRXMXFMediaMetadataUMIDKey";
inline constexpr std::string_view QRXMXFMediaMetadataEditUnitsKey =
    "QRXMXFMediaMetadataEditUnitsKey";
inline constexpr std::string_view QRXMXFMediaMetadataUUIDKey = "QRXMXFMediaMetadataUUIDKey";
inline constexpr std::string_view QRXMXFMediaMetadataTrackEditRateKey =
    "QRXMXFMediaMetadataTrackEditRateKey";

}  // namespace qrx
