#pragma once

#include "volumes/StructureCheck.h"

namespace qrx::avchd {

// The steps that the path tests of the AVCHD cards are put together from. All look at the path
// alone but kHasCanonFolder, which asks the disk.

[[nodiscard]] CheckVerdict liesBelowPrivate(const QRXHDMediaVolumeUtilityObject&, ExaminedPath&);
[[nodiscard]] CheckVerdict liesBelowStreamFolder(const QRXHDMediaVolumeUtilityObject&,
                                                 ExaminedPath&);
[[nodiscard]] CheckVerdict standsInStreamFolder(const QRXHDMediaVolumeUtilityObject&,
                                                ExaminedPath&);
[[nodiscard]] CheckVerdict isTransportStream(const QRXHDMediaVolumeUtilityObject&, ExaminedPath&);
[[nodiscard]] CheckVerdict hasCanonFolder(const QRXHDMediaVolumeUtilityObject&, ExaminedPath&);
[[nodiscard]] CheckVerdict standsOutsidePrivate(const QRXHDMediaVolumeUtilityObject&,
                                                ExaminedPath&);

inline constexpr StructureCheck kLiesBelowPrivate{"the path leads through a folder PRIVATE/AVCHD",
                                                  liesBelowPrivate};
inline constexpr StructureCheck kLiesBelowStreamFolder{
    "the path leads through a folder AVCHD/BDMV/STREAM", liesBelowStreamFolder};
inline constexpr StructureCheck kStandsInStreamFolder{
    "the file stands directly in the folder STREAM, and its name has no small letters",
    standsInStreamFolder};
inline constexpr StructureCheck kIsTransportStream{"the file's name ends in .MTS",
                                                   isTransportStream};
inline constexpr StructureCheck kHasCanonFolder{
    "the folder PRIVATE/AVCHD/CANON stands at the card's root", hasCanonFolder};
inline constexpr StructureCheck kStandsOutsidePrivate{
    "the folder AVCHD does not stand in a folder PRIVATE (written in capitals)",
    standsOutsidePrivate};

}  // namespace qrx::avchd
