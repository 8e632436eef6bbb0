#pragma once

#include "qrx/cards/MediaTool.h"
#include "qrx/cards/NewCard.h"

namespace qrx::tool {

inline constexpr unsigned kMostCameraMovies = 9999;
inline constexpr unsigned kMostRedClips = 999;

// Cards whose clips are QuickTime or MP4 movies. The clips of one card are copies of one recording.

/// DCIM/100CANON/MVI_0001.MOV with the picture MVI_0001.THM beside it, and the folder MISC. The
/// numbers go on with photographs, IMG_0004.JPG, as many as there are clips, up to 9999.
void makeCanonEosCard(NewCard& card, const MediaTool& media, unsigned clips);
/// DCIM/100GOPRO/GOPR0001.MP4 with the picture GOPR0001.THM and the small movie GOPR0001.LRV.
void makeGoProCard(NewCard& card, const MediaTool& media, unsigned clips);
/// A001.RDM/A001_C001_0503AB.RDC/A001_C001_0503AB_F.mov beside A001_C001_0503AB_001.R3D, which
/// holds stand-in bytes: nothing here writes raw footage.
void makeRedOneCard(NewCard& card, const MediaTool& media, unsigned clips);
/// PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MOV, INFO/ABCD0001_01.XML, and the list of the clips in
/// MEDIAINF.XML and .BAK. Of four clips or more, the last three are pieces of one recording.
void makeJvcQtCard(NewCard& card, const MediaTool& media, unsigned count);

}  // namespace qrx::tool
