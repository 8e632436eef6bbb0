#pragma once

#include "qrx/report/ReportData.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx::tool {

/// Size of the regular file, links followed; nothing for anything else.
[[nodiscard]] std::optional<std::uint64_t> bytesOf(const FilePath& file);

/// What is known of the clip at `file`, which `utility` claims; position and poster are left out.
///
/// The library answers neutrally where it does not know (timecode 00:00:00:00, 30 frames/s); here
/// such an answer counts only when something on the card says so.
[[nodiscard]] ReportClip factsOf(const FilePath& file,
                                 const QRXHDMediaVolumeUtilityObject& utility);

}  // namespace qrx::tool
