#pragma once

#include "qrx/cards/MediaTool.h"
#include "qrx/cards/NewCard.h"

namespace qrx::tool {

/// A card holds no more; the names would go on.
inline constexpr unsigned kMostAvchdClips = 4000;

// AVCHD cards:
//
//     BDMV/INDEX.BDM, MOVIEOBJ.BDM
//     BDMV/STREAM/00000.MTS     one clip
//     BDMV/CLIPINF/00000.CPI    what is known of it
//     BDMV/PLAYLIST/00000.MPL   the clips in order
//
// The clips of one card are copies of one recording; their start timecodes, which stand in the CPI
// file, differ.

void makeCanonAvchdCard(NewCard& card, const MediaTool& media, unsigned clips);
void makeSonyAvchdCard(NewCard& card, const MediaTool& media, unsigned clips);
void makePanasonicAvchdCard(NewCard& card, const MediaTool& media, unsigned clips);

}  // namespace qrx::tool
