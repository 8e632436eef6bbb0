#pragma once

#include <array>
#include <string_view>

namespace qrx {

/// Ends of the names of files that are never video: pictures, texts, sounds, disk images and the
/// index and sidecar files of the camera cards. "r3d" is raw footage that only its own reader
/// opens.
inline constexpr auto kInvalidVideoExtensions = std::to_array<std::string_view>(
    {"bmp", "jpg", "jpeg", "gif", "png", "tif", "r3d",  "txt", "pdf",  "smi", "xml", "rtf",
     "cpi", "mpl", "int",  "bnp", "bdm", "thm", "tiff", "aif", "aiff", "psd", "dmg"});
static_assert(kInvalidVideoExtensions.size() == 23);

}  // namespace qrx
