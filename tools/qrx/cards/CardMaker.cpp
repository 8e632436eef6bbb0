#include "qrx/cards/CardMaker.h"

#include <algorithm>
#include <array>

#include "qrx/cards/AvchdCard.h"
#include "qrx/cards/LooseMovies.h"

namespace qrx::tool {

namespace {

constexpr std::array kCardMakers{
    CardMaker{"canon-avchd", "PRIVATE/AVCHD with the folder CANON beside BDMV", 3, kMostAvchdClips,
              makeCanonAvchdCard},
    CardMaker{"sony-avchd", "AVCHD at the root of the card", 3, kMostAvchdClips, makeSonyAvchdCard},
    CardMaker{"panasonic-avchd", "PRIVATE/AVCHD", 3, kMostAvchdClips, makePanasonicAvchdCard},
    CardMaker{"loose", "no card: a folder of mov, mp4, avi and mkv movies, and files that are none",
              4, kMostLooseMovies, makeLooseMovies},
};

}  // namespace

std::span<const CardMaker> cardMakers() {
    return kCardMakers;
}

const CardMaker* cardMakerFor(std::string_view layout) {
    const auto* const found =
        std::find_if(kCardMakers.begin(), kCardMakers.end(),
                     [&](const CardMaker& maker) { return maker.layout == layout; });
    return found == kCardMakers.end() ? nullptr : &*found;
}

}  // namespace qrx::tool
