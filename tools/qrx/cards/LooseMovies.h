#pragma once

#include "qrx/cards/MediaTool.h"
#include "qrx/cards/NewCard.h"

namespace qrx::tool {

inline constexpr unsigned kMostLooseMovies = 9999;

/// movie0001.mov, movie0002.mp4, movie0003.avi, movie0004.mkv, movie0005.mov and so on, beside
/// notes.txt, still.jpg and edit.xml, which are no clips.
void makeLooseMovies(NewCard& card, const MediaTool& media, unsigned clips);

}  // namespace qrx::tool
