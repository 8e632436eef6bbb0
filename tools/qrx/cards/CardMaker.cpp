#include "qrx/cards/CardMaker.h"

#include <algorithm>
#include <array>

#include "qrx/cards/AvchdCard.h"
#include "qrx/cards/BpavCards.h"
#include "qrx/cards/LooseMovies.h"
#include "qrx/cards/MovieCards.h"
#include "qrx/cards/MxfCards.h"
#include "qrx/cards/P2Card.h"

namespace qrx::tool {

namespace {

constexpr std::array kCardMakers{
    CardMaker{"canon-avchd", "PRIVATE/AVCHD with the folder CANON beside BDMV", 3, kMostAvchdClips,
              makeCanonAvchdCard},
    CardMaker{"sony-avchd", "AVCHD at the root of the card", 3, kMostAvchdClips, makeSonyAvchdCard},
    CardMaker{"panasonic-avchd", "PRIVATE/AVCHD", 3, kMostAvchdClips, makePanasonicAvchdCard},
    CardMaker{"p2", "CONTENTS/VIDEO, with one recording in three pieces", 4, kMostP2Clips,
              makeP2Card},
    CardMaker{"xdcam-hd", "Clip, with proxies in Sub", 3, kMostXdcamHdClips, makeXdcamHdCard},
    CardMaker{"xdcam-ex", "BPAV/CLPR, with one recording in three segments", 4, kMostBpavClips,
              makeXdcamExCard},
    CardMaker{"jvc-mp4", "PRIVATE/JVC/BPAV/CLPR, with one recording in three segments", 4,
              kMostBpavClips, makeJvcMp4Card},
    CardMaker{"canon-xf", "CONTENTS/CLIPS001", 3, kMostCanonXfClips, makeCanonXfCard},
    CardMaker{"canon-eos", "DCIM/100CANON, with MISC", 3, kMostCameraMovies, makeCanonEosCard},
    CardMaker{"gopro", "DCIM/100GOPRO", 3, kMostCameraMovies, makeGoProCard},
    CardMaker{"red-one", "reference movies in A001.RDM, beside stand-ins for raw footage", 3,
              kMostRedClips, makeRedOneCard},
    CardMaker{"jvc-qt", "PRIVATE/JVC/CQAV, with one recording in three pieces", 4,
              kMostCameraMovies, makeJvcQtCard},
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
