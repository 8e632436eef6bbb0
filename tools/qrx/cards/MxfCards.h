#pragma once

#include "qrx/cards/MediaTool.h"
#include "qrx/cards/NewCard.h"

namespace qrx::tool {

inline constexpr unsigned kMostXdcamHdClips = 9999;
inline constexpr unsigned kMostCanonXfClips = 9999;

// Cards whose clips are MXF files with picture and sound, at 25 frames a second: at this rate alone
// the start timecode that stands in the file is read back exactly.

/// An XDCAM HD disc or card:
///
///     MEDIAPRO.XML, INDEX.XML, ALIAS.XML   lists of the clips
///     Clip/C0001.MXF, C0001M01.XML         a clip, and what is known of it
///     Sub/C0001S01.MXF                     the same in small
void makeXdcamHdCard(NewCard& card, const MediaTool& media, unsigned clips);

/// A Canon XF card: CONTENTS/CLIPS001/AA0001/AA000101.MXF, one folder a clip, AA000101.XML beside
/// it.
void makeCanonXfCard(NewCard& card, const MediaTool& media, unsigned clips);

}  // namespace qrx::tool
