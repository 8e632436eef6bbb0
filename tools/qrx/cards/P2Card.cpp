#include "qrx/cards/P2Card.h"

#include <optional>
#include <string>
#include <vector>

#include <fmt/core.h>

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "qrx/cards/CardClips.h"
#include "readers/MxfClipQuestions.h"

namespace qrx::tool {

namespace {

constexpr unsigned kChannels = 2;
constexpr unsigned kFrames = 30;
constexpr std::string_view kLastClip = "LASTCLIP.TXT";

std::string clipName(unsigned clip) {
    return fmt::format("{:04}AB", clip + 1);
}

std::string videoFile(unsigned clip) {
    return fmt::format("CONTENTS/VIDEO/{}.MXF", clipName(clip));
}

std::string audioFile(unsigned clip, unsigned channel) {
    return fmt::format("CONTENTS/AUDIO/{}{:02}.MXF", clipName(clip), channel);
}

std::string iconFile(unsigned clip) {
    return fmt::format("CONTENTS/ICON/{}.BMP", clipName(clip));
}

/// Encodes the media of the first clip; the others are the same under another timecode.
void makeMedia(NewCard& card, const MediaTool& media, unsigned clip, const std::string& start) {
    const auto write = [&](const std::string& file, const std::string& firstFile,
                           std::vector<std::string> encoding, const std::string& track) {
        std::vector<std::string> wrapping{"-timecode", start, "-f", "mxf_opatom"};
        if (track == "1:a") {
            wrapping.insert(wrapping.begin(), {"-mxf_audio_edit_rate", "30000/1001"});
        }
        const std::string path = card.pathForNewFile(file);
        if (clip > 0) {
            media.rewrap(joinedPath(card.folder(), firstFile), wrapping, path);
            return;
        }
        encoding.insert(encoding.end(), {"-map", track});
        encoding.insert(encoding.end(), wrapping.begin(), wrapping.end());
        media.makeMovie(encoding, path);
    };
    write(videoFile(clip), videoFile(0),
          {"-c:v", media.encoder({"mpeg2video"}), "-s", "1280x720", "-b:v", "10M"}, "0:v");
    write(audioFile(clip, 0), audioFile(0, 0), {"-c:a", media.encoder({"pcm_s16le"}), "-ac", "1"},
          "1:a");
    for (unsigned channel = 1; channel < kChannels; ++channel) {
        card.copy(audioFile(clip, 0), audioFile(clip, channel));
    }
}

/// What a clip XML says of a piece and its neighbours.
struct Link {
    std::string identifier;
    std::string clipName;
};

std::string connectionXml(std::string_view name, const std::optional<Link>& link) {
    if (!link) return "";
    return fmt::format("<{0}><GlobalClipID>{1}</GlobalClipID><ClipName>{2}</ClipName></{0}>\r\n",
                       name, link->identifier, link->clipName);
}

std::string relationXml(const CardClips& clips, const std::vector<Link>& links, unsigned clip) {
    if (!clips.isPiece(clip)) return "";
    const unsigned first = clips.firstPiece();
    std::optional<Link> previous;
    std::optional<Link> next;
    if (clip > first) previous = links[clip - 1];
    if (clip + 1 < clips.count()) next = links[clip + 1];
    return fmt::format(
        "<Relation>\r\n<OffsetInShot>{}</OffsetInShot>\r\n<GlobalShotID>{}</GlobalShotID>\r\n"
        "<Connection>\r\n{}{}{}</Connection>\r\n</Relation>\r\n",
        (clip - first) * kFrames, links[first].identifier, connectionXml("Top", links[first]),
        connectionXml("Previous", previous), connectionXml("Next", next));
}

std::string essenceXml(const std::string& start) {
    std::string audio;
    for (unsigned channel = 0; channel < kChannels; ++channel) {
        audio +=
            "<Audio><AudioFormat>MXF</AudioFormat><SamplingRate>48000</SamplingRate>"
            "<BitsPerSample>16</BitsPerSample></Audio>\r\n";
    }
    return fmt::format(
        "<EssenceList>\r\n<Video>\r\n<VideoFormat>MXF</VideoFormat>\r\n<Codec>MPEG2</Codec>\r\n"
        "<FrameRate DropFrameFlag=\"true\">59.94i</FrameRate>\r\n"
        "<StartTimecode>{}</StartTimecode>\r\n</Video>\r\n{}</EssenceList>\r\n",
        start, audio);
}

std::string clipXml(const CardClips& clips, const std::vector<Link>& links, unsigned clip) {
    // The cameras write ":" for drop frame too.
    return fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\r\n"
        "<P2Main xmlns=\"urn:schemas-Professional-Plug-in:P2:ClipMetadata:v3.1\">\r\n"
        "<ClipContent>\r\n<ClipName>{}</ClipName>\r\n<GlobalClipID>{}</GlobalClipID>\r\n"
        "<Duration>{}</Duration>\r\n<EditUnit>1001/30000</EditUnit>\r\n{}{}"
        "<ClipMetadata>\r\n<UserClipName>Scene 1 take {}</UserClipName>\r\n</ClipMetadata>\r\n"
        "</ClipContent>\r\n</P2Main>\r\n",
        links[clip].clipName, links[clip].identifier, kFrames, relationXml(clips, links, clip),
        essenceXml(timecodeText(clips.startOf(clip))), clips.takeOf(clip));
}

}  // namespace

void makeP2Card(NewCard& card, const MediaTool& media, unsigned count) {
    const CardClips clips(count);
    std::vector<Link> links;
    media.makeStill({"-s", "80x60", "-c:v", media.encoder({"bmp"}), "-f", "image2pipe"},
                    card.pathForNewFile(iconFile(0)));
    for (unsigned clip = 0; clip < count; ++clip) {
        makeMedia(card, media, clip, timecodeText(clips.startOf(clip), ';'));
        if (clip > 0) card.copy(iconFile(0), iconFile(clip));
        const auto umid = mxfUniqueIdentifier(joinedPath(card.folder(), videoFile(clip)));
        links.push_back({upperCased(umid.value_or(madeUpUmid(clip))), clipName(clip)});
    }
    for (unsigned clip = 0; clip < count; ++clip) {
        card.write(fmt::format("CONTENTS/CLIP/{}.XML", clipName(clip)),
                   clipXml(clips, links, clip));
    }
    card.write(kLastClip, fmt::format("{}\r\n1.0\r\n{}\r\n", clipName(count - 1), count));
}

}  // namespace qrx::tool
