#pragma once

#include <span>
#include <string_view>

#include "qrx/cards/MediaTool.h"
#include "qrx/cards/NewCard.h"

namespace qrx::tool {

/// How the card of one layout is made.
struct CardMaker {
    std::string_view layout;  ///< as it is named on the command line
    std::string_view description;
    unsigned usualClips;
    unsigned mostClips;  ///< what the layout has names for
    void (*make)(NewCard& card, const MediaTool& media, unsigned clips);
};

/// All of them. A new layout is a new row.
[[nodiscard]] std::span<const CardMaker> cardMakers();
/// Null when there is none of that name.
[[nodiscard]] const CardMaker* cardMakerFor(std::string_view layout);

}  // namespace qrx::tool
