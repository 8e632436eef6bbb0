#pragma once

#include "qrx/cards/MediaTool.h"
#include "qrx/cards/NewCard.h"

namespace qrx::tool {

inline constexpr unsigned kMostP2Clips = 999;

/// A P2 card:
///
///     LASTCLIP.TXT                     the card's marker
///     CONTENTS/CLIP/0001AB.XML         what is known of a clip
///     CONTENTS/VIDEO/0001AB.MXF        its picture
///     CONTENTS/AUDIO/0001AB00.MXF      its sound, one file a channel
///     CONTENTS/ICON/0001AB.BMP         80 x 60 pixels
///     CONTENTS/PROXY/0001AB.MP4        the same in small, with .XML and a .BIN of stand-in bytes
///
/// Of four clips or more, the last three are one recording that names its pieces.
void makeP2Card(NewCard& card, const MediaTool& media, unsigned count);

}  // namespace qrx::tool
