#include "qrx/cards/MxfCards.h"

#include <string>
#include <vector>

#include <fmt/core.h>

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "qrx/cards/CardClips.h"
#include "qrx/cards/XdcamSidecar.h"
#include "readers/MxfClipQuestions.h"

namespace qrx::tool {

namespace {

constexpr unsigned kRate = 25;
constexpr unsigned kFrames = 25;

/// One file a clip; the first is encoded, the others are the same under another timecode.
/// @param name  gives the name of a clip's file.
template <class Name>
void makeMxfs(NewCard& card, const MediaTool& media, unsigned clips, const Name& name,
              const std::string& size) {
    std::vector<NewMedia> files;
    for (unsigned clip = 0; clip < clips; ++clip) {
        const std::string start = timecodeText(CardClips(clips).startOf(clip));
        files.push_back({.options = {"-timecode", start, "-f", "mxf"},
                         .path = card.pathForNewFile(name(clip))});
    }
    const NewMedia first = files.front();
    std::vector<std::string> options{"-r",   "25", "-t",   "1",
                                     "-s",   size, "-c:v", media.encoder({"mpeg2video"}),
                                     "-b:v", "8M", "-c:a", media.encoder({"pcm_s16le"})};
    options.insert(options.end(), first.options.begin(), first.options.end());
    media.makeMovie(options, first.path);
    files.erase(files.begin());
    media.rewrap(first.path, files);
}

std::string umidOf(const NewCard& card, const std::string& file, unsigned clip) {
    const auto umid = mxfUniqueIdentifier(joinedPath(card.folder(), file));
    return upperCased(umid.value_or(madeUpUmid(clip)));
}

std::string xdcamName(unsigned clip) {
    return fmt::format("C{:04}", clip + 1);
}

std::string xdcamFile(unsigned clip) {
    return fmt::format("Clip/{}.MXF", xdcamName(clip));
}

std::string xdcamProxy(unsigned clip) {
    return fmt::format("Sub/{}S01.MXF", xdcamName(clip));
}

std::string canonName(unsigned clip) {
    return fmt::format("AA{:04}01", clip + 1);
}

std::string canonFile(unsigned clip, std::string_view extension) {
    return fmt::format("CONTENTS/CLIPS001/AA{:04}/{}.{}", clip + 1, canonName(clip), extension);
}

}  // namespace

void makeXdcamHdCard(NewCard& card, const MediaTool& media, unsigned clips) {
    std::string material;
    std::string index;
    makeMxfs(card, media, clips, xdcamFile, "1920x1080");
    makeMxfs(card, media, clips, xdcamProxy, "480x270");
    for (unsigned clip = 0; clip < clips; ++clip) {
        const StartTimecode start = CardClips(clips).startOf(clip);
        const std::string umid = umidOf(card, xdcamFile(clip), clip);
        card.write(fmt::format("Clip/{}M01.XML", xdcamName(clip)),
                   nonRealTimeMeta({.umid = umid,
                                    .start = start,
                                    .frames = kFrames,
                                    .timecodeBase = kRate,
                                    .rate = "25p",
                                    .codec = "MPEG2HD"}));
        material += fmt::format(
            "    <Material uri=\"./{}\" type=\"MXF\" dur=\"{}\" umid=\"{}\">\n"
            "      <Proxy uri=\"./{}\" type=\"MXF\"/>\n    </Material>\n",
            xdcamFile(clip), kFrames, umid, xdcamProxy(clip));
        index += fmt::format("    <clip name=\"{}\" umid=\"{}\"/>\n", xdcamName(clip), umid);
    }
    constexpr std::string_view kXml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    card.write("MEDIAPRO.XML", fmt::format("{}<MediaProfile version=\"2.00\">\n  <Contents>\n{}"
                                           "  </Contents>\n</MediaProfile>\n",
                                           kXml, material));
    card.write("INDEX.XML", fmt::format("{}<indexFile>\n  <clipTable path=\"/Clip\">\n{}"
                                        "  </clipTable>\n</indexFile>\n",
                                        kXml, index));
    card.write("ALIAS.XML", fmt::format("{}<aliasFile><clipTable/></aliasFile>\n", kXml));
    card.makeFolder("Edit");
    card.makeFolder("General");
}

void makeCanonXfCard(NewCard& card, const MediaTool& media, unsigned clips) {
    const auto movie = [](unsigned clip) { return canonFile(clip, "MXF"); };
    makeMxfs(card, media, clips, movie, "1920x1080");
    for (unsigned clip = 0; clip < clips; ++clip) {
        const StartTimecode start = CardClips(clips).startOf(clip);
        const std::string file = movie(clip);
        card.write(
            canonFile(clip, "XML"),
            fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<ClipMetadata>\n  <ClipName>{}</ClipName>\n"
                        "  <Umid>{}</Umid>\n  <FrameRate>25</FrameRate>\n"
                        "  <StartTimecode>{}</StartTimecode>\n  <Duration>{}</Duration>\n"
                        "</ClipMetadata>\n",
                        canonName(clip), umidOf(card, file, clip), timecodeText(start), kFrames));
    }
}

}  // namespace qrx::tool
