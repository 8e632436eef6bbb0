#include "qrx/cards/AvchdCard.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <fmt/core.h>

#include "qrx/cards/AvchdIndex.h"

namespace qrx::tool {

namespace {

constexpr std::size_t kPacketBytes = 192;
// ffmpeg lets a stream begin at 1.4 seconds; it is 30 frames long, at 30000/1001 a second.
constexpr std::uint32_t kFirstTime = 63'000;
constexpr std::uint32_t kLastTime = kFirstTime + 45'045;
constexpr std::size_t kClipsPerPlaylist = 200;

constexpr TimecodePlace kSonyPlace{.bytesBeforeEnd = 16, .frameFlags = 0x40};
constexpr TimecodePlace kPanasonicPlace{.bytesBeforeEnd = 8, .frameFlags = 0};

std::string clipName(unsigned number) {
    return fmt::format("{:05}", number);
}

/// Seven seconds and some frames from clip to clip.
StartTimecode startOf(unsigned clip) {
    constexpr unsigned kSixty = 60;
    const unsigned seconds = clip * 7;
    return {.hours = 1 + seconds / kSixty / kSixty,
            .minutes = seconds / kSixty % kSixty,
            .seconds = seconds % kSixty,
            .frames = clip * 5 % 30};
}

TransportStream makeStream(NewCard& card, const MediaTool& media, const std::string& name) {
    const std::string video = media.encoder({"libx264", "libopenh264", "h264", "mpeg2video"});
    const std::string audio = media.encoder({"ac3", "ac3_fixed", "mp2"});
    std::vector<std::string> options{"-c:v", video, "-c:a", audio, "-b:a", "192k"};
    if (video == "libx264") options.insert(options.end(), {"-preset", "ultrafast"});
    options.insert(options.end(), {"-f", "mpegts", "-mpegts_m2ts_mode", "1"});
    media.makeMovie(options, card.pathForNewFile(name));
    return {.packets = static_cast<std::uint32_t>(card.sizeOf(name) / kPacketBytes),
            .firstTime = kFirstTime,
            .lastTime = kLastTime,
            .isMpeg2 = video == "mpeg2video",
            .hasMpegAudio = audio == "mp2"};
}

std::vector<std::string> makePlaylists(unsigned clips, const TransportStream& stream) {
    std::vector<std::string> playlists;
    std::vector<std::string> names;
    for (unsigned clip = 0; clip < clips; ++clip) {
        names.push_back(clipName(clip));
        if (names.size() == kClipsPerPlaylist || clip + 1 == clips) {
            playlists.push_back(playlistFile(names, stream));
            names.clear();
        }
    }
    return playlists;
}

/// The folder BDMV and all in it.
/// @param avchd     folder of the card in which BDMV stands.
/// @param timecode  where the maker keeps the start timecode; nothing where nobody knows.
/// @param copies    folder that gets a copy of index and playlists, if any.
void makeBdmv(NewCard& card, const MediaTool& media, unsigned clips, const std::string& avchd,
              const TimecodePlace& timecode, const std::optional<std::string>& copies) {
    const std::string bdmv = avchd + "/BDMV";
    const std::string firstClip = bdmv + "/STREAM/" + clipName(0) + ".MTS";
    const TransportStream stream = makeStream(card, media, firstClip);
    for (unsigned clip = 0; clip < clips; ++clip) {
        const std::string name = clipName(clip);
        if (clip > 0) card.copy(firstClip, fmt::format("{}/STREAM/{}.MTS", bdmv, name));
        card.write(fmt::format("{}/CLIPINF/{}.CPI", bdmv, name),
                   clipInformationFile(stream, startOf(clip), timecode));
    }
    std::vector<std::string> indexFolders{bdmv};
    if (copies) indexFolders.push_back(*copies);
    const std::vector<std::string> playlists = makePlaylists(clips, stream);
    for (const std::string& folder : indexFolders) {
        card.write(folder + "/INDEX.BDM", indexFile());
        const std::string listFolder = folder == bdmv ? bdmv + "/PLAYLIST" : folder;
        for (unsigned i = 0; i < playlists.size(); ++i) {
            card.write(listFolder + "/" + clipName(i) + ".MPL", playlists[i]);
        }
    }
    card.write(bdmv + "/MOVIEOBJ.BDM", movieObjectFile());
}

}  // namespace

void makeCanonAvchdCard(NewCard& card, const MediaTool& media, unsigned clips) {
    makeBdmv(card, media, clips, "PRIVATE/AVCHD", kPanasonicPlace, "PRIVATE/AVCHD/CANON");
}

void makeSonyAvchdCard(NewCard& card, const MediaTool& media, unsigned clips) {
    makeBdmv(card, media, clips, "AVCHD", kSonyPlace, std::nullopt);
}

void makePanasonicAvchdCard(NewCard& card, const MediaTool& media, unsigned clips) {
    makeBdmv(card, media, clips, "PRIVATE/AVCHD", kPanasonicPlace, std::nullopt);
}

}  // namespace qrx::tool
