#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "foundation/FilePath.h"

namespace qrx {

/// The number by which a clip file is ordered: of its name, what is no decimal digit is dropped at
/// both ends and the leading integer of the rest is read. C0012.MP4 gives 12, a name without digits
/// 0, a number beyond 32 bits 2147483647.
///
/// KEPT: a name whose only digits stand in its extension has those: clip.MP4 gives 4.
[[nodiscard]] std::int32_t orderingNumber(std::string_view path);

/// Ascending by orderingNumber, equal ones in the order given. Each number is worked out once.
[[nodiscard]] FilePaths byAscendingNumber(const FilePaths& paths);

/// Seconds since 1970 (UTC) and what is above a whole second.
struct FileDate {
    std::int64_t seconds = 0;
    std::uint32_t nanoseconds = 0;

    [[nodiscard]] bool operator==(const FileDate&) const = default;
    [[nodiscard]] bool operator<(const FileDate& other) const {
        return seconds != other.seconds ? seconds < other.seconds : nanoseconds < other.nanoseconds;
    }
};

/// When the item itself (a link, not its target) was created; where the file system does not keep
/// that, when it was last written. Nothing when it cannot be read.
[[nodiscard]] std::optional<FileDate> creationDate(const FilePath& path);

using DateOfFile = std::function<std::optional<FileDate>(const FilePath& path)>;

/// Each path in turn is put before the first one already placed that is strictly later, or at the
/// end. So equal dates keep their order, and a path without a date stays behind those that came
/// before it while later paths may still go in front of it. Each date is read once.
[[nodiscard]] FilePaths byCreationDate(const FilePaths& paths,
                                       const DateOfFile& dateOf = creationDate);

}  // namespace qrx
