#pragma once

#include <cstdint>

namespace qrx {

/// Rate of a clip. The numbers are stored in archives and exchanged with the host, so they never
/// change; a number above 10 can be held and means no rate that this version knows.
enum QRXVideoFrameRate : std::uint64_t {
    QRXVideoFrameRate24 = 0,
    QRXVideoFrameRate23_976 = 1,
    QRXVideoFrameRatePAL = 2,     ///< 25 frames/s, legacy; no conversion yields it but the old one
    QRXVideoFrameRate25 = 3,      ///< 25 frames/s progressive
    QRXVideoFrameRate50i = 4,     ///< 50 fields/s, 25 frames/s
    QRXVideoFrameRate29_97 = 5,   ///< counted in drop frame
    QRXVideoFrameRate30 = 6,      ///< 30 frames/s, or 29.97 counted non-drop
    QRXVideoFrameRate59_94i = 7,  ///< 59.94 fields/s, 29.97 frames/s
    QRXVideoFrameRate50p = 8,
    QRXVideoFrameRate60 = 9,
    QRXVideoFrameRateUndefined = 10,
};

/// Older rate definitions, also called movie rates; still read and written.
enum QRXFrameRateDefinition : std::int32_t {
    QRXFrameRateDefinition2997DropFrame = 100,
    QRXFrameRateDefinition2997NonDropFrame = 101,
    QRXFrameRateDefinitionPAL = 102,
    QRXFrameRateDefinition24 = 103,  ///< 24 and 23.98
    QRXFrameRateDefinition5994 = 104,
    QRXFrameRateDefinition50 = 105,
    QRXFrameRateDefinitionUnmapped = 106,   ///< defined, without an equivalent among the new rates
    QRXFrameRateDefinitionUndefined = 107,  ///< what every old-rate conversion fails with
    QRXFrameRateDefinition5994Second = 108,
    QRXFrameRateDefinition50i = 109,
    QRXFrameRateDefinition30 = 110,
    QRXFrameRateDefinition25 = 111,
    QRXFrameRateDefinition24Second = 112,
    QRXFrameRateDefinition60 = 113,
};

/// Any other number states no preference.
enum QRXScanType : std::uint64_t {
    QRXScanTypeProgressive = 0,
    QRXScanTypeInterlaced = 1,
};

/// How an interlaced rate is looked at.
enum QRXViewType : std::uint64_t {
    QRXViewTypeStandard = 0,  ///< at its field rate
    QRXViewTypeFrame = 1,     ///< at its frame rate
};

}  // namespace qrx
