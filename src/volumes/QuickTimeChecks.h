#pragma once

#include <array>

#include "volumes/StructureCheck.h"

namespace qrx::quicktime {

// The path test of loose movies, and the same as one step of the cameras that record movies. The
// utilities that use them are QRXQTUtility and its subclasses.

[[nodiscard]] CheckVerdict isMovByName(const QRXHDMediaVolumeUtilityObject&, ExaminedPath&);
[[nodiscard]] CheckVerdict mayBeVideoByName(const QRXHDMediaVolumeUtilityObject&, ExaminedPath&);
[[nodiscard]] CheckVerdict opensAsMovie(const QRXHDMediaVolumeUtilityObject&, ExaminedPath&);
[[nodiscard]] CheckVerdict isLooseMovie(const QRXHDMediaVolumeUtilityObject&, ExaminedPath&);

inline constexpr std::array kLooseMovieChecks{
    StructureCheck{"the file's name ends in .MOV", isMovByName},
    StructureCheck{"the file's name has no extension of files without video", mayBeVideoByName},
    StructureCheck{"the file opens as a movie with a video or a sound track", opensAsMovie},
};

inline constexpr StructureCheck kIsLooseMovie{
    "the file's name ends in .MOV, or it opens as a movie with a video or a sound track",
    isLooseMovie};

}  // namespace qrx::quicktime
