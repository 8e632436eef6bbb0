// The real tool over files of every kind, warm and plain: the same report, the same status.

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <iostream>
#include <random>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/PosixProcessRunner.h"
#include "platform/linux/WarmProcessRunner.h"
#include "qrx/cards/CardMaker.h"
#include "support/Callers.h"
#include "support/FfmpegMedia.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;
using qrx::test::FfmpegMedia;

struct Made {
    const char* name;
    Strings options;  ///< of a second of picture and tone
};

const std::vector<Made>& madeFiles() {
    static const std::vector<Made> made{
        {"h264.mov", {"-c:v", "libx264", "-c:a", "aac"}},
        {"mpeg4.mov", {"-c:v", "mpeg4", "-c:a", "pcm_s16le", "-timecode", "01:02:03:04"}},
        {"prores.mov", {"-c:v", "prores_ks", "-c:a", "pcm_s24le"}},
        {"mjpeg.mov", {"-c:v", "mjpeg", "-c:a", "aac"}},
        {"raw.mov", {"-c:v", "rawvideo", "-an"}},
        {"dnxhr.mov",
         {"-c:v", "dnxhd", "-profile:v", "dnxhr_lb", "-s", "256x120", "-pix_fmt", "yuv422p",
          "-an"}},
        {"h264.mp4", {"-c:v", "libx264", "-c:a", "aac"}},
        {"h265.mp4", {"-c:v", "libx265", "-x265-params", "log-level=error", "-an"}},
        {"fragmented.mp4", {"-c:v", "libx264", "-c:a", "aac", "-movflags", "frag_keyframe"}},
        {"sound.m4a", {"-vn", "-c:a", "aac"}},
        {"alac.m4a", {"-vn", "-c:a", "alac"}},
        {"h263.3gp", {"-c:v", "h263", "-s", "128x96", "-an"}},
        {"h264.mkv", {"-c:v", "libx264", "-c:a", "flac"}},
        {"ffv1.mkv", {"-c:v", "ffv1", "-c:a", "pcm_s16le"}},
        {"huffyuv.mkv", {"-c:v", "ffvhuff", "-an"}},
        {"vp8.webm", {"-c:v", "libvpx", "-c:a", "libopus"}},
        {"vp9.webm", {"-c:v", "libvpx-vp9", "-an"}},
        {"mpeg2.mxf", {"-c:v", "mpeg2video", "-c:a", "pcm_s16le", "-ar", "48000"}},
        {"atom.mxf", {"-c:v", "mpeg2video", "-an", "-f", "mxf_opatom"}},
        {"h264.mts", {"-c:v", "libx264", "-c:a", "ac3", "-f", "mpegts"}},
        {"mpeg2.ts", {"-c:v", "mpeg2video", "-c:a", "mp2", "-ar", "48000"}},
        {"mpeg1.mpg", {"-c:v", "mpeg1video", "-c:a", "mp2", "-ar", "48000"}},
        {"mpeg2.vob", {"-c:v", "mpeg2video", "-c:a", "ac3", "-ar", "48000"}},
        {"stream.m2v", {"-c:v", "mpeg2video", "-an"}},
        {"stream.h264", {"-c:v", "libx264", "-an"}},
        {"stream.hevc", {"-c:v", "libx265", "-x265-params", "log-level=error", "-an"}},
        {"mpeg4.avi", {"-c:v", "mpeg4", "-c:a", "libmp3lame", "-ar", "44100"}},
        {"mjpeg.avi", {"-c:v", "mjpeg", "-c:a", "pcm_s16le"}},
        {"raw.avi", {"-c:v", "rawvideo", "-an"}},
        {"dv.dv", {"-target", "pal-dv"}},
        {"flash.flv", {"-c:v", "flv", "-c:a", "libmp3lame", "-ar", "44100"}},
        {"windows.wmv", {"-c:v", "wmv2", "-c:a", "wmav2", "-ar", "44100"}},
        {"windows.asf", {"-c:v", "msmpeg4", "-c:a", "wmav2", "-ar", "44100"}},
        {"theora.ogv", {"-c:v", "libtheora", "-c:a", "libvorbis"}},
        {"opus.ogg", {"-vn", "-c:a", "libopus"}},
        {"vorbis.ogg", {"-vn", "-c:a", "libvorbis"}},
        {"sound.mp3", {"-vn", "-c:a", "libmp3lame", "-ar", "44100"}},
        {"sound.wav", {"-vn"}},
        {"float.wav", {"-vn", "-c:a", "pcm_f32le"}},
        {"sound.w64", {"-vn"}},
        {"sound.aiff", {"-vn"}},
        {"sound.caf", {"-vn"}},
        {"sound.au", {"-vn"}},
        {"sound.voc", {"-vn"}},
        {"sound.flac", {"-vn"}},
        {"sound.ac3", {"-vn", "-ar", "48000"}},
        {"sound.eac3", {"-vn", "-ar", "48000"}},
        {"sound.aac", {"-vn"}},
        {"sound.tta", {"-vn"}},
        {"sound.wv", {"-vn"}},
        {"sound.mp2", {"-vn", "-ar", "48000"}},
        {"still.jpg", {"-frames:v", "1"}},
        {"still.png", {"-frames:v", "1"}},
        {"still.bmp", {"-frames:v", "1"}},
        {"still.tiff", {"-frames:v", "1"}},
        {"still.webp", {"-frames:v", "1"}},
        {"still.ppm", {"-frames:v", "1"}},
        {"still.tga", {"-frames:v", "1"}},
        {"still.dpx", {"-frames:v", "1"}},
        {"still.exr", {"-frames:v", "1", "-pix_fmt", "gbrpf32le"}},
        {"still.jp2", {"-frames:v", "1"}},
        {"moving.gif", {}},
        {"moving.apng", {}},
        {"frames.y4m", {"-pix_fmt", "yuv420p"}},
        {"frames.ivf", {"-c:v", "libvpx", "-an"}},
        {"general.nut", {"-c:v", "mpeg4", "-c:a", "pcm_s16le"}},
        {"general.rm", {"-c:v", "rv10", "-an"}},
        {"general.swf", {"-c:v", "flv", "-an"}},
        {"general.gxf", {"-target", "pal-dv", "-c:v", "mpeg2video", "-an", "-f", "gxf"}},
    };
    return made;
}

const std::vector<std::pair<const char*, const char*>>& texts() {
    static const std::vector<std::pair<const char*, const char*>> all{
        {"sidecar.xml", "<?xml version=\"1.0\"?>\n<NonRealTimeMeta><Duration value=\"3\"/>\n"},
        {"titles.srt", "1\n00:00:01,000 --> 00:00:02,000\nHello\n"},
        {"titles.vtt", "WEBVTT\n\n00:01.000 --> 00:02.000\nHello\n"},
        {"titles.ass",
         "[Script Info]\nScriptType: v4.00+\n\n[Events]\n"
         "Format: Layer, Start, End, Style, Text\n"
         "Dialogue: 0,0:00:01.00,0:00:02.00,Default,Hello\n"},
        {"list.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nmissing.ts\n#EXT-X-ENDLIST\n"},
        {"list.ffconcat", "ffconcat version 1.0\nfile 'missing.mov'\n"},
        {"manifest.mpd", "<?xml version=\"1.0\"?><MPD><Period/></MPD>"},
        {"session.sdp", "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nt=0 0\n"},
        {"metadata.ffmeta", ";FFMETADATA1\ntitle=x\n"},
        {"image.dpx.txt", "plain text, nothing else\n"},
        {"art.ans", "\x1b[31mred\x1b[0m\n"},
        {"LASTCLIP.TXT", "0001AB\r\n1.0\r\n7\r\n"},
        {"long.txt", nullptr},
        {"empty", ""},
    };
    return all;
}

std::string noise(std::size_t size, unsigned seed) {
    std::mt19937 random{seed};
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

/// Files of every kind, in one folder: whole, cut, garbled, under odd names; and cards.
class EveryKind {
public:
    EveryKind() {
        for (const Made& made : madeFiles()) {
            const std::string path =
                FfmpegMedia::shared().file(made.name, qrx::test::pictureAndTone(made.options));
            files_.push_back(path);
            spoil(made.name, qrx::test::fileContents(path));
        }
        for (const auto& [name, text] : texts()) {
            add(name, text == nullptr ? std::string(300'000, 'x') : std::string(text));
        }
        for (unsigned seed = 0; seed < 20; ++seed) {
            add("noise" + std::to_string(seed), noise(seed * seed * 40, seed));
        }
        const std::string movie = qrx::test::fileContents(files_.front());
        for (const char* const name :
             {"a b.mov", "-i", "%d.mov", "%03d.jpg", "a\nb.mov", "a\xff\xfe.mov", "\x1b[2J.mov",
              "http:x", "pipe:", "\xe2\x82\xac'\"$(x).mov", "[a,b].mov", "\\.mov", "*?.mov"}) {
            add(name, movie);
        }
        addCards();
        addOthers();
    }

    [[nodiscard]] const std::vector<std::string>& files() const { return files_; }

private:
    void add(const std::string& name, const std::string& contents) {
        files_.push_back(folder_.write(name, contents));
    }

    void spoil(const std::string& name, const std::string& whole) {
        add("half-" + name, whole.substr(0, whole.size() / 2));
        add("head-" + name, whole.substr(0, 100));
        std::string garbled = whole;
        const std::string other = noise(garbled.size() / 4, 7);
        std::copy(other.begin(), other.end(),
                  garbled.begin() + static_cast<long>(whole.size() / 8));
        add("garbled-" + name, garbled);
    }

    void addCards() {
        for (const tool::CardMaker& maker : tool::cardMakers()) {
            const std::string path = folder_ / ("card-" + std::string(maker.layout));
            tool::NewCard card(path);
            maker.make(card, tool::MediaTool(), maker.usualClips);
            card.keep();
            for (const auto& entry : fs::recursive_directory_iterator(path)) {
                if (entry.is_regular_file()) files_.push_back(entry.path());
            }
        }
    }

    void addOthers() {
        files_.push_back(folder_ / "missing");
        files_.push_back(folder_.makeFolder("folder"));
        files_.push_back(folder_.link("link", files_.front()));
        files_.push_back(folder_.link("broken", "nowhere"));
        files_.push_back(folder_.link("loop", "loop"));
        files_.push_back("/dev/null");
        files_.emplace_back("");
        files_.push_back("relative");
        files_.push_back("/" + std::string(5'000, 'n'));
    }

    qrx::test::TemporaryFolder folder_;
    std::vector<std::string> files_;
};

/// The tool names objects by their address, which differs from run to run.
std::string withoutAddresses(const std::string& report) {
    static const std::regex address("@ 0x[0-9a-f]+");
    return std::regex_replace(report, address, "@");
}

ProcessRequest reportOf(const std::string& file) {
    return {"/usr/bin/ffmpeg", {"-i", file}, StandardError::captured};
}

WarmChoices warmAtOnce() {
    WarmChoices choices;
    choices.plainRunsFirst = 0;
    return choices;
}

TEST(WarmToolMedia, EveryReportIsTheSameAsInAPlainRun) {
    const EveryKind kinds;
    const std::vector<std::string>& files = kinds.files();
    ASSERT_GE(files.size(), 300U);
    PosixProcessRunner plain;
    WarmProcessRunner warm({}, warmAtOnce());
    std::atomic<std::size_t> next = 0;
    std::atomic<std::size_t> described = 0;
    qrx::test::Callers callers(2, [&](int /*caller*/) {
        for (std::size_t i = next++; i < files.size(); i = next++) {
            SCOPED_TRACE(files[i]);
            const ProcessResult expected = plain.run(reportOf(files[i]));
            const ProcessResult result = warm.run(reportOf(files[i]));
            EXPECT_EQ(withoutAddresses(result.standardError),
                      withoutAddresses(expected.standardError));
            EXPECT_EQ(result.standardOutput, expected.standardOutput);
            EXPECT_EQ(result.exitStatus, expected.exitStatus);
            if (result.standardError.find("Input #0") != std::string::npos) ++described;
        }
    });
    callers.wait();
    EXPECT_EQ(warm.pool().counts().warmRuns, files.size()) << "each one was warm";
    EXPECT_GE(described, madeFiles().size());
    std::cout << files.size() << " files, " << described << " described\n";
}

TEST(WarmToolMedia, EveryStillIsTheSameAsInAPlainRun) {
    PosixProcessRunner plain;
    WarmProcessRunner warm({}, warmAtOnce());
    const qrx::test::TemporaryFolder folder;
    std::size_t stills = 0;
    for (const Made& made : madeFiles()) {
        SCOPED_TRACE(made.name);
        const std::string movie =
            FfmpegMedia::shared().file(made.name, qrx::test::pictureAndTone(made.options));
        const auto still = [&](ProcessRunner& runner, const std::string& name) {
            const std::string image = folder / name;
            ProcessRequest request{
                "/usr/bin/ffmpeg",
                {"-i", movie, "-r", "1", "-t", "00:00:01", "-f", "image2", image}};
            request.standardError = StandardError::captured;
            const int status = runner.run(request).exitStatus;
            struct stat written {};
            const bool exists = ::stat(image.c_str(), &written) == 0;
            if (exists) ++stills;
            return std::to_string(status) + " " + std::to_string(written.st_mode) +
                   (exists ? qrx::test::fileContents(image) : "");
        };
        EXPECT_TRUE(still(warm, std::string(made.name) + ".w.jpg") ==
                    still(plain, std::string(made.name) + ".p.jpg"));
    }
    EXPECT_EQ(warm.pool().counts().warmRuns, madeFiles().size());
    EXPECT_GE(stills, madeFiles().size());
}

}  // namespace
}  // namespace qrx::platform
