#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "foundation/FilePath.h"

namespace qrx {

// The start timecode in the maker's block at the end of an AVCHD clip information file (.CPI). Four
// bytes stand there in the order frames, seconds, minutes, hours, two decimal digits a byte.

using TimecodeBytes = std::array<std::byte, 4>;

/// How far before the end of the file the four bytes begin, in bytes.
inline constexpr std::uint64_t kPanasonicTimecodeDistance = 8;
inline constexpr std::uint64_t kSonyTimecodeDistance = 16;

/// The four bytes that begin `distance` bytes before the end of the file; nothing when the file is
/// missing, shorter than that, unreadable or not a regular file. `distance` is 4 or more.
[[nodiscard]] std::optional<TimecodeBytes> fourBytesBeforeEnd(const FilePath& file,
                                                              std::uint64_t distance);

/// 15 10 20 01 (hex) gives "01:20:10:15". Nothing when the decimal digits of the bytes, the letters
/// left out, are not eight.
[[nodiscard]] std::optional<std::string> panasonicTimecode(const TimecodeBytes& bytes);

/// As Panasonic's, but a letter gives nothing, and the frames carry flags: from 30 to 40 they are
/// 0, above that 40 too many. 45 10 20 01 (hex) gives "01:20:10:05".
[[nodiscard]] std::optional<std::string> sonyTimecode(const TimecodeBytes& bytes);

}  // namespace qrx
