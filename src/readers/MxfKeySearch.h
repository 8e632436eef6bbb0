#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>

#include "foundation/FilePath.h"
#include "metadata/QRXMXFKey.h"
#include "readers/ByteSource.h"
#include "readers/MxfWindows.h"

namespace qrx {

// MXF files are not parsed. A value is found by its local tag and the length field behind it,
// searched as plain bytes in the first and the last million bytes of the file.

/// What `byteSequenceLocation` answers when there is no such place.
inline constexpr std::uint64_t kMxfLocationNotFound =
    static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());

/// How the bytes of a value are written as text.
enum class MxfValueForm {
    hexText,      ///< lower-case hex digits in file order
    decimalText,  ///< one big-endian unsigned number in decimal
};

/// Position of the first occurrence of `pattern`; kMxfLocationNotFound without one and for an empty
/// pattern.
[[nodiscard]] std::uint64_t byteSequenceLocation(std::span<const std::byte> pattern,
                                                 std::span<const std::byte> data);

/// The value that follows an MXF local tag.
///
/// @param data    bytes of one window, in file order; not kept.
/// @param tag     local tag followed by its length field, usually 4 bytes.
/// @param length  number of value bytes that follow the tag.
/// @return  a view into `data` of exactly `length` bytes after the first occurrence of `tag`.
///          Nothing when the tag is absent, when it is empty, or when the value would run past the
///          end of `data`; a later occurrence is not tried in that last case.
[[nodiscard]] std::optional<std::span<const std::byte>> valueAfterTag(
    std::span<const std::byte> data, std::span<const std::byte> tag, std::uint64_t length);

/// The value of `key` in `data`; its length is what the key's length field says. Nothing where
/// `valueAfterTag` finds nothing. A key without a length field has an empty value.
[[nodiscard]] std::optional<std::string> mxfValueInData(const QRXMXFKey& key,
                                                        std::span<const std::byte> data,
                                                        MxfValueForm form);

/// The value of `key` in the head of a file, else in its tail. A tag that straddles the end of a
/// window is not found there.
[[nodiscard]] std::optional<std::string> mxfValueInWindows(const QRXMXFKey& key,
                                                           MxfWindows& windows, MxfValueForm form);

/// As above, in windows of its own.
[[nodiscard]] std::optional<std::string> mxfValueInSource(const QRXMXFKey& key,
                                                          const ByteSource& source,
                                                          MxfValueForm form);

/// As above, of the file at `file`, read anew on every call; nothing when it cannot be read.
[[nodiscard]] std::optional<std::string> mxfValueInFile(const QRXMXFKey& key, const FilePath& file,
                                                        MxfValueForm form);

/// What stands between a pattern and the next SMPTE label.
///
/// @param location  where the pattern stands; a negative one means its first occurrence.
/// @return  a view into `data`. Nothing when the pattern is absent or no label begins at most 128
///          bytes behind it; and nothing when fewer bytes follow the pattern than the smaller of
///          1,024 and the size of `data`.
[[nodiscard]] std::optional<std::span<const std::byte>> bytesFollowingMxfKey(
    std::span<const std::byte> pattern, std::span<const std::byte> data, std::int64_t location);

}  // namespace qrx
