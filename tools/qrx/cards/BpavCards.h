#pragma once

#include "qrx/cards/MediaTool.h"
#include "qrx/cards/NewCard.h"

namespace qrx::tool {

inline constexpr unsigned kMostBpavClips = 9999;

// Cards with a BPAV folder:
//
//     BPAV/CUEUP.XML, MEDIAPRO.XML               how far it was played, and a list of the clips
//     BPAV/CLPR/632_0001_01/632_0001_01.MP4      a clip in a folder of its own
//     BPAV/CLPR/632_0001_01/632_0001_01M01.XML   what is known of it
//     BPAV/TAKR/                                 recordings of several clips
//
// Of four clips or more, the last three are segments of one recording.

/// Six files a clip: two .SMI, a .PPN and a .BIM file too; the last two hold stand-in bytes.
void makeXdcamExCard(NewCard& card, const MediaTool& media, unsigned clips);
/// The same below PRIVATE/JVC, with names such as ABCD0001_01.
void makeJvcMp4Card(NewCard& card, const MediaTool& media, unsigned clips);

}  // namespace qrx::tool
