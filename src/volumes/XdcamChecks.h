#pragma once

#include <string_view>

#include "volumes/StructureCheck.h"

namespace qrx::xdcam {

// The steps that the path tests of the XDCAM cards are put together from. All look at the path
// alone; folder names count in their own case.

[[nodiscard]] CheckVerdict isMp4(const QRXHDMediaVolumeUtilityObject&, ExaminedPath&);

/// Whether the path contains `clipStore` ("/BPAV/CLPR/"), the name of the file's folder and "/".
[[nodiscard]] CheckVerdict clipFolderStandsIn(std::string_view clipStore, ExaminedPath& path);

inline constexpr StructureCheck kIsMp4{"the file's name ends in .MP4", isMp4};

}  // namespace qrx::xdcam
