#include "qrx/cards/BpavCards.h"

#include <string>
#include <vector>

#include <fmt/core.h>

#include "qrx/cards/CardClips.h"
#include "qrx/cards/XdcamSidecar.h"

namespace qrx::tool {

namespace {

constexpr unsigned kFrames = 30;
constexpr std::string_view kXml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

/// What two makers do differently.
struct BpavStyle {
    std::string_view root;
    std::string_view takePrefix;
    bool hasPlayerFiles;  ///< .SMI, .PPN, .BIM
};

constexpr BpavStyle kXdcamEx{.root = "BPAV", .takePrefix = "632_", .hasPlayerFiles = true};
constexpr BpavStyle kJvcMp4{
    .root = "PRIVATE/JVC/BPAV", .takePrefix = "ABCD", .hasPlayerFiles = false};

std::string takeName(const BpavStyle& style, const CardClips& clips, unsigned clip) {
    return fmt::format("{}{:04}", style.takePrefix, clips.takeOf(clip));
}

std::string clipName(const BpavStyle& style, const CardClips& clips, unsigned clip) {
    return fmt::format("{}_{:02}", takeName(style, clips, clip), clips.pieceOf(clip));
}

/// Path of a clip's file, without the part that its kinds differ in.
std::string clipStem(const BpavStyle& style, const CardClips& clips, unsigned clip) {
    return fmt::format("{0}/CLPR/{1}/{1}", style.root, clipName(style, clips, clip));
}

std::string smil(const std::vector<std::string>& media) {
    std::string body;
    for (const std::string& each : media) {
        body += fmt::format("      <video src=\"{}\"/>\n", each);
    }
    return fmt::format("{}<smil>\n  <body>\n    <seq>\n{}    </seq>\n  </body>\n</smil>\n", kXml,
                       body);
}

XdcamFacts factsOf(const CardClips& clips, unsigned clip) {
    return {.umid = madeUpUmid(clip),
            .start = clips.startOf(clip),
            .frames = kFrames,
            .timecodeBase = 30,
            .rate = "29.97p",
            .codec = "AVC"};
}

void makeMovie(NewCard& card, const MediaTool& media, const std::string& file) {
    const std::string video = media.encoder({"libx264", "libopenh264", "mpeg4"});
    std::vector<std::string> options{"-c:v", video, "-c:a", media.encoder({"aac", "ac3"})};
    if (video == "libx264") options.insert(options.end(), {"-preset", "ultrafast"});
    options.insert(options.end(), {"-f", "mp4"});
    media.makeMovie(options, card.pathForNewFile(file));
}

void writeCompanions(NewCard& card, const BpavStyle& style, const CardClips& clips, unsigned clip) {
    const std::string stem = clipStem(style, clips, clip);
    card.write(stem + "M01.XML", nonRealTimeMeta(factsOf(clips, clip)));
    if (!style.hasPlayerFiles) return;
    const std::string playlist = smil({clipName(style, clips, clip) + ".MP4"});
    card.write(stem + ".SMI", playlist);
    card.write(stem + "C01.SMI", playlist);
    card.write(stem + "I01.PPN", std::string(64, '\xFF'));
    card.write(stem + "R01.BIM", std::string(64, '\xFF'));
}

/// The recording in segments, if there is one.
void writeTake(NewCard& card, const BpavStyle& style, const CardClips& clips) {
    card.makeFolder(fmt::format("{}/TAKR", style.root));
    if (clips.firstPiece() == clips.count()) return;
    std::vector<std::string> segments;
    for (unsigned clip = clips.firstPiece(); clip < clips.count(); ++clip) {
        segments.push_back(fmt::format("../../CLPR/{0}/{0}.MP4", clipName(style, clips, clip)));
    }
    const std::string name = takeName(style, clips, clips.firstPiece());
    card.write(fmt::format("{0}/TAKR/{1}/{1}.SMI", style.root, name), smil(segments));
}

void writeLists(NewCard& card, const BpavStyle& style, const CardClips& clips) {
    std::string material;
    for (unsigned clip = 0; clip < clips.count(); ++clip) {
        material += fmt::format(
            "    <Material uri=\"./CLPR/{0}/{0}.MP4\" type=\"MP4\" dur=\"{1}\" umid=\"{2}\"/>\n",
            clipName(style, clips, clip), kFrames, madeUpUmid(clip));
    }
    card.write(fmt::format("{}/MEDIAPRO.XML", style.root),
               fmt::format("{}<MediaProfile version=\"2.10\">\n  <Contents>\n{}  </Contents>\n"
                           "</MediaProfile>\n",
                           kXml, material));
    card.write(fmt::format("{}/CUEUP.XML", style.root),
               fmt::format("{}<CueUp>\n  <history>\n    <Clip name=\"{}\" position=\"0\"/>\n"
                           "  </history>\n</CueUp>\n",
                           kXml, clipName(style, clips, 0)));
}

void makeBpavCard(NewCard& card, const MediaTool& media, const BpavStyle& style,
                  const CardClips& clips) {
    const std::string first = clipStem(style, clips, 0) + ".MP4";
    makeMovie(card, media, first);
    for (unsigned clip = 0; clip < clips.count(); ++clip) {
        if (clip > 0) card.copy(first, clipStem(style, clips, clip) + ".MP4");
        writeCompanions(card, style, clips, clip);
    }
    writeTake(card, style, clips);
    writeLists(card, style, clips);
}

}  // namespace

void makeXdcamExCard(NewCard& card, const MediaTool& media, unsigned clips) {
    makeBpavCard(card, media, kXdcamEx, CardClips(clips));
}

void makeJvcMp4Card(NewCard& card, const MediaTool& media, unsigned clips) {
    makeBpavCard(card, media, kJvcMp4, CardClips(clips));
}

}  // namespace qrx::tool
