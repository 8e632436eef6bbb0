#pragma once

#include <span>

#include "volumes/VolumeUtilityClass.h"

namespace qrx {

// The four ordered lists of utility classes. The generic AVCHD and XDCAM parents and the base
// object stand in none of them: they never claim a file through the aggregate.

/// The order in which a file is offered; the first that claims it has it.
[[nodiscard]] std::span<const VolumeUtilityClass> classesByPrecedence();
/// Every class, in the order in which titles and volume types are looked up.
[[nodiscard]] std::span<const VolumeUtilityClass> allDefinedClasses();
/// Those whose clips QuickTime reads without help.
[[nodiscard]] std::span<const VolumeUtilityClass> nativeQuickTimeClasses();
/// Those whose clips the ffmpeg tool reads without help.
[[nodiscard]] std::span<const VolumeUtilityClass> nativeFFmpegClasses();

}  // namespace qrx
