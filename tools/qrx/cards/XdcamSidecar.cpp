#include "qrx/cards/XdcamSidecar.h"

#include <fmt/core.h>

#include "qrx/cards/CardClips.h"

namespace qrx::tool {

std::string nonRealTimeMeta(const XdcamFacts& facts) {
    const unsigned last = facts.frames - 1;
    const std::string table = fmt::format(
        "  <LtcChangeTable tcFps=\"{}\" halfStep=\"false\">\n"
        "    <LtcChange frameCount=\"0\" value=\"{}\" status=\"increment\"/>\n"
        "    <LtcChange frameCount=\"{}\" value=\"{}\" status=\"end\"/>\n"
        "  </LtcChangeTable>\n",
        facts.timecodeBase, reversedDigits(facts.start), last,
        reversedDigits(later(facts.start, last, facts.timecodeBase)));
    return fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<NonRealTimeMeta xmlns=\"urn:schemas-professionalDisc:nonRealTimeMeta:ver.2.00\"\n"
        "    lastUpdate=\"2011-05-03T14:02:09+02:00\">\n"
        "  <TargetMaterial umidRef=\"{0}\"/>\n"
        "  <Duration value=\"{1}\"/>\n"
        "{2}"
        "  <CreationDate value=\"2011-05-03T14:02:08+02:00\"/>\n"
        "  <VideoFormat>\n"
        "    <VideoFrame videoCodec=\"{3}\" captureFps=\"{4}\" formatFps=\"{4}\"/>\n"
        "    <VideoLayout pixel=\"1920\" numOfVerticalLine=\"1080\" aspectRatio=\"16:9\"/>\n"
        "  </VideoFormat>\n"
        "  <AudioFormat numOfChannel=\"2\"/>\n"
        "</NonRealTimeMeta>\n",
        facts.umid, facts.frames, table, facts.codec, facts.rate);
}

}  // namespace qrx::tool
