#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "foundation/FilePath.h"
#include "metadata/MetadataValue.h"
#include "metadata/QRXMXFMetadataWrapper.h"
#include "timecode/VideoFrameRate.h"

namespace qrx {

// What the bytes of an MXF file say about a clip. Every question reads the file anew, up to a
// million bytes at each end; nothing is kept. None throws. Whether a file lies where
// a card layout keeps its clips is for the layout to ask first.

/// Whether the file begins with the 11 bytes of a header partition pack; NO when it cannot be read.
[[nodiscard]] bool mxfFileHasSignature(const FilePath& file);

/// The UMID as 64 lower-case hex digits.
[[nodiscard]] std::optional<std::string> mxfUniqueIdentifier(const FilePath& file);

/// Edit units in the clip; 0 when the file does not say.
[[nodiscard]] std::int32_t mxfDurationInEditUnits(const FilePath& file);
/// Numerator and denominator of the length of one edit unit in seconds: 1 and 25 for 25 edit units
/// a second. 0 and 1 when the file does not say.
[[nodiscard]] std::int32_t mxfEditUnitNumerator(const FilePath& file);
[[nodiscard]] std::int32_t mxfEditUnitDenominator(const FilePath& file);

/// By the rounded timecode base, so 30 for a clip of 29.97.
[[nodiscard]] QRXVideoFrameRate mxfFrameRate(const FilePath& file);

/// Timecode of the first frame, at the drop-frame rate that belongs to the rounded timecode base;
/// "00:00:00:00" when start, base or drop-frame flag is missing.
[[nodiscard]] std::string mxfStartTimecode(const FilePath& file);
[[nodiscard]] bool mxfIsDropFrame(const FilePath& file);

/// What a metadata record of the clip is made from: texts and numbers under their descriptions
/// ("N/A" for what the file does not say), duration, rates and file name under their identifiers.
[[nodiscard]] MetadataDictionary mxfMetadataDictionary(const FilePath& file,
                                                       const std::string& startTimecode);
/// A record of the clip. The dictionary above is read and handed over, but a new wrapper takes no
/// values from it: every key stays not found.
[[nodiscard]] QRXMXFMetadataWrapper mxfMetadataWrapper(const FilePath& file,
                                                       const std::string& startTimecode);

}  // namespace qrx
