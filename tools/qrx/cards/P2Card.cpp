#include "qrx/cards/P2Card.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
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
constexpr std::size_t kStandInBytes = 64;  // of a file whose format nothing here writes
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

std::string proxyFile(unsigned clip, std::string_view extension) {
    return fmt::format("CONTENTS/PROXY/{}.{}", clipName(clip), extension);
}

/// The same tracks in one file a clip, each under its own timecode.
/// @param name      gives the name of a clip's file.
/// @param encoding  how the first is encoded; the others are rewrapped from it.
/// @param wrapping  what the container wants of all of them.
template <class Name>
void makeTrack(NewCard& card, const MediaTool& media, const CardClips& clips, const Name& name,
               std::vector<std::string> encoding, const std::vector<std::string>& wrapping) {
    const auto fileOf = [&](unsigned clip) {
        std::vector<std::string> options = wrapping;
        options.insert(options.end(),
                       {"-timecode", timecodeText(clips.startOf(clip), ';'), "-f", "mxf_opatom"});
        return NewMedia{.options = std::move(options), .path = card.pathForNewFile(name(clip))};
    };
    const NewMedia first = fileOf(0);
    encoding.insert(encoding.end(), first.options.begin(), first.options.end());
    media.makeMovie(encoding, first.path);
    std::vector<NewMedia> others;
    for (unsigned clip = 1; clip < clips.count(); ++clip) {
        others.push_back(fileOf(clip));
    }
    media.rewrap(first.path, others);
}

void makeMedia(NewCard& card, const MediaTool& media, const CardClips& clips) {
    makeTrack(
        card, media, clips, videoFile,
        {"-map", "0:v", "-c:v", media.encoder({"mpeg2video"}), "-s", "1280x720", "-b:v", "10M"},
        {});
    makeTrack(card, media, clips, [](unsigned clip) { return audioFile(clip, 0); },
              {"-map", "1:a", "-c:a", media.encoder({"pcm_s16le"}), "-ac", "1"},
              {"-mxf_audio_edit_rate", "30000/1001"});
    for (unsigned clip = 0; clip < clips.count(); ++clip) {
        for (unsigned channel = 1; channel < kChannels; ++channel) {
            card.copy(audioFile(clip, 0), audioFile(clip, channel));
        }
    }
}

/// Icons and proxies, which are the same for every clip.
void makePreviews(NewCard& card, const MediaTool& media, const CardClips& clips) {
    media.makeStill({"-s", "80x60", "-c:v", media.encoder({"bmp"}), "-f", "image2pipe"},
                    card.pathForNewFile(iconFile(0)));
    const std::string video = media.encoder({"libx264", "libopenh264", "mpeg4"});
    std::vector<std::string> proxy{"-s",  "320x180", "-c:v",
                                   video, "-c:a",    media.encoder({"aac", "ac3"})};
    if (video == "libx264") proxy.insert(proxy.end(), {"-preset", "ultrafast"});
    proxy.insert(proxy.end(), {"-f", "mp4"});
    media.makeMovie(proxy, card.pathForNewFile(proxyFile(0, "MP4")));
    for (unsigned clip = 0; clip < clips.count(); ++clip) {
        if (clip > 0) {
            card.copy(iconFile(0), iconFile(clip));
            card.copy(proxyFile(0, "MP4"), proxyFile(clip, "MP4"));
        }
        card.write(proxyFile(clip, "BIN"), std::string(kStandInBytes, '\xFF'));
        card.write(proxyFile(clip, "XML"),
                   fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\" ?>\r\n"
                               "<ProxyMain><ClipName>{}</ClipName></ProxyMain>\r\n",
                               clipName(clip)));
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
    makeMedia(card, media, clips);
    makePreviews(card, media, clips);
    for (unsigned clip = 0; clip < count; ++clip) {
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
