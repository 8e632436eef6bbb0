#include "readers/QRXFFmpegDefinitions.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "readers/InvalidVideoExtensions.h"

namespace qrx {

namespace {

struct CodecFacts {
    QRXFFmpegVideoCodec codec;
    std::string_view title;
    std::string_view argument;
    std::array<std::string_view, 3> extensions;  // unused places are empty
    std::string_view audioArgument;
};

constexpr std::array kCodecs{
    CodecFacts{QRXFFmpegVideoCodecAppleQuickTime, "Apple QuickTime", "mpeg4", {"mov"}, "copy"},
    CodecFacts{QRXFFmpegVideoCodecH264, "H264", "libx264", {"mp4", "m4v", "mov"}, "copy"},
    CodecFacts{QRXFFmpegVideoCodecMPEG4, "MPEG 4", "mpeg4", {"mp4", "mov"}, "copy"},
    CodecFacts{QRXFFmpegVideoCodecMPEG2, "MPEG 2", "mpeg2video", {"mpg"}, "libmp3lame"},
    CodecFacts{QRXFFmpegVideoCodecMPEG1, "MPEG 1", "mpeg1video", {"mpg"}, "libmp3lame"},
    CodecFacts{QRXFFmpegVideoCodecHUFFYUV, "HUFFYUV", "ffvhuff", {"avi"}, "libmp3lame"},
    CodecFacts{QRXFFmpegVideoCodecFlash, "Flash", "flv", {"flv", "f4v"}, "copy"},
    CodecFacts{QRXFFmpegVideoCodecDVVideo, "DV Video", "dvvideo", {"mov"}, "copy"},
    CodecFacts{QRXFFmpegVideoCodecMotionJPEG, "Motion JPEG", "mjpeg", {"mov", "avi"}, "copy"},
    CodecFacts{QRXFFmpegVideoCodecWindowsMedia, "Windows Media", "wmv2", {"wmv"}, "wmav2"},
    CodecFacts{QRXFFmpegVideoCodecAvidDNX, "Avid DNX", "dnxhd", {"mov"}, "copy"},
};
static_assert(kCodecs.size() == 11);

constexpr CodecFacts kNoCodec{QRXFFmpegVideoCodec{10}, "MPEG 4", "mpeg4", {}, "copy"};

const CodecFacts& factsOf(QRXFFmpegVideoCodec codec) {
    const auto* const row =
        std::find_if(kCodecs.begin(), kCodecs.end(),
                     [codec](const CodecFacts& facts) { return facts.codec == codec; });
    return row == kCodecs.end() ? kNoCodec : *row;
}

}  // namespace

std::vector<QRXFFmpegVideoCodec> QRXFFmpegDefinitions::allFFmpegVideoCodecs() {
    std::vector<QRXFFmpegVideoCodec> codecs;
    codecs.reserve(kCodecs.size());
    for (const auto& facts : kCodecs) {
        codecs.push_back(facts.codec);
    }
    return codecs;
}

std::string QRXFFmpegDefinitions::titleForFFmpegVideoCodec(QRXFFmpegVideoCodec codec) {
    return std::string(factsOf(codec).title);
}

std::string QRXFFmpegDefinitions::commandLineArgumentForVideoCodec(QRXFFmpegVideoCodec codec) {
    return std::string(factsOf(codec).argument);
}

std::vector<std::string> QRXFFmpegDefinitions::fileExtensionsForVideoCodec(
    QRXFFmpegVideoCodec codec) {
    std::vector<std::string> extensions;
    for (const std::string_view extension : factsOf(codec).extensions) {
        if (!extension.empty()) extensions.emplace_back(extension);
    }
    return extensions;
}

std::string QRXFFmpegDefinitions::audioCommandLineCodecForVideoCodec(QRXFFmpegVideoCodec codec) {
    return std::string(factsOf(codec).audioArgument);
}

std::string QRXFFmpegDefinitions::defaultFFmpegPath() {
    return "/Vantrel/ffmpeg10-5/bin/ffmpeg";
}

std::vector<std::string> QRXFFmpegDefinitions::invalidVideoFileExtensions() {
    return {kInvalidVideoExtensions.begin(), kInvalidVideoExtensions.end()};
}

}  // namespace qrx
