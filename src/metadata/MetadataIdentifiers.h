#pragma once

#include <string_view>

namespace qrx {

// The identifiers of the metadata keys, and the marker of a key without a value. The text of each
// is its own name, which hosts rely on.

/// The value of a key for which nothing was found.
inline constexpr std::string_view QRXMediaMetadataNotFound = "QRXMediaMetadataNotFound";

inline constexpr std::string_view QRXMediaMetadataVideoCodecTitleKey =
    "QRXMediaMetadataVideoCodecTitleKey";
inline constexpr std::string_view QRXMediaMetadataAudioCodecTitleKey =
    "QRXMediaMetadataAudioCodecTitleKey";
inline constexpr std::string_view QRXMediaMetadataCodecDimensionsKey =
    "QRXMediaMetadataCodecDimensionsKey";
inline constexpr std::string_view QRXMediaMetadataCodecDimensionsDescriptionKey =
    "QRXMediaMetadataCodecDimensionsDescriptionKey";
inline constexpr std::string_view QRXMediaMetadataCodecWidthKey = "QRXMediaMetadataCodecWidthKey";
inline constexpr std::string_view QRXMediaMetadataCodecHeightKey = "QRXMediaMetadataCodecHeightKey";
inline constexpr std::string_view QRXMediaMetadataVideoSampleRateKey =
    "QRXMediaMetadataVideoSampleRateKey";
inline constexpr std::string_view QRXMediaMetadataAudioSampleRateKey =
    "QRXMediaMetadataAudioSampleRateKey";
inline constexpr std::string_view QRXMediaMetadataVideoBitRateKey =
    "QRXMediaMetadataVideoBitRateKey";
inline constexpr std::string_view QRXMediaMetadataAudioBitRateKey =
    "QRXMediaMetadataAudioBitRateKey";
inline constexpr std::string_view QRXMediaMetadataVideoDurationKey =
    "QRXMediaMetadataVideoDurationKey";
inline constexpr std::string_view QRXMediaMetadataFileSizeKey = "QRXMediaMetadataFileSizeKey";
inline constexpr std::string_view QRXMediaMetadataGopSizeKey = "QRXMediaMetadataGopSizeKey";
inline constexpr std::string_view QRXMediaMetadataVideoFileTitleKey =
    "QRXMediaMetadataVideoFileTitleKey";
inline constexpr std::string_view QRXMediaMetadataStartTimecodeKey =
    "QRXMediaMetadataStartTimecodeKey";
inline constexpr std::string_view QRXMediaMetadataEndTimecodeKey = "QRXMediaMetadataEndTimecodeKey";
inline constexpr std::string_view QRXMediaMetadataAudioChannelsKey =
    "QRXMediaMetadataAudioChannelsKey";
// KEPT: the one identifier without the suffix "Key"; hosts ask for it by this text.
inline constexpr std::string_view QRXMediaMetadataVideoFrameRate = "QRXMediaMetadataVideoFrameRate";
inline constexpr std::string_view QRXMediaMetadataDropFrameKey = "QRXMediaMetadataDropFrameKey";
inline constexpr std::string_view QRXMediaMetadataManufacturerNameKey =
    "QRXMediaMetadataManufacturerNameKey";
inline constexpr std::string_view QRXMediaMetadataProductsNameKey =
    "QRXMediaMetadataProductsNameKey";
inline constexpr std::string_view QRXMediaMetadataUMIDKey = "QRXMediaMetadataUMIDKey";
inline constexpr std::string_view QRXMediaMetadataModificationDateKey =
    "QRXMediaMetadataModificationDateKey";
inline constexpr std::string_view QRXMediaMetadataCreationDateKey =
    "QRXMediaMetadataCreationDateKey";
inline constexpr std::string_view QRXMediaMetadataDurationKey = "QRXMediaMetadataDurationKey";

}  // namespace qrx
