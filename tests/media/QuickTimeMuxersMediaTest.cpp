#include <algorithm>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PlacedMovie.h"
#include "foundation/FileOrdering.h"
#include "readers/MovieReader.h"
#include "support/FfmpegMedia.h"
#include "support/LargeBoxes.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/FileMatcher.h"
#include "volumes/QRXCanonEOSUtility.h"
#include "volumes/QRXGoProUtility.h"
#include "volumes/QRXJVCQTUtility.h"
#include "volumes/QRXREDOneUtility.h"

// Every muxer of ffmpeg's that writes QuickTime or ISO base media files, in every form that it can
// be told to write, with every kind of content, as clips of the cameras that record such movies.

namespace qrx {
namespace {

using test::FfmpegMedia;
using test::PlacedMovie;
using testing::HasSubstr;
using Arguments = std::vector<std::string>;

constexpr const char* kMuxers[] = {"mov", "mp4", "ipod", "psp", "3gp", "3g2", "ismv", "f4v"};

struct Form {
    const char* name;
    const char* movflags;     ///< null: none
    bool largeBoxes = false;  ///< rewritten with 64-bit sizes and offsets
};

constexpr Form kForms[] = {
    {"Plain", nullptr},
    {"HeaderFirst", "faststart"},
    {"LargeBoxes", nullptr, true},
    {"LargeBoxesHeaderFirst", "faststart", true},
    {"FragmentedByKeyFrame", "frag_keyframe+empty_moov"},
    {"FragmentedByKeyFrameFromItsBox", "frag_keyframe+empty_moov+default_base_moof"},
    {"FragmentedByFrame", "frag_every_frame+empty_moov"},
    {"FragmentedByFrameFromItsBox", "frag_every_frame+empty_moov+default_base_moof"},
    {"HeaderWithTheFirstFragment", "frag_keyframe+delay_moov"},
    {"Cmaf", "cmaf"},
};

struct Content {
    const char* name;
    Arguments streams;
    bool picture;
    bool sound;
};

const Content kContents[] = {
    {"PictureAndSound", {"-map", "0:v", "-map", "0:a"}, true, true},
    {"PictureOnly", {"-map", "0:v"}, true, false},
    {"SoundOnly", {"-map", "0:a"}, false, true},
    {"SubtitlesOnly", {"-map", "0:s"}, false, false},
};

/// A combination that cannot be written, and what is said of it. Null stands for any.
struct Refusal {
    const char* muxer;
    const char* form;
    const char* content;
    const char* words;
    const char* exceptForm = nullptr;
};

constexpr const char* kPspNeedsBoth = "PSP mode need one video and one audio stream";
// The check is passed over where the header is written late.
constexpr const char* kLateHeader = "HeaderWithTheFirstFragment";

constexpr Refusal kRefusals[] = {
    {"psp", nullptr, "PictureOnly", kPspNeedsBoth, kLateHeader},
    {"psp", nullptr, "SoundOnly", kPspNeedsBoth, kLateHeader},
    {"psp", nullptr, "SubtitlesOnly", kPspNeedsBoth, kLateHeader},
    {"f4v", nullptr, "SubtitlesOnly", "codec not currently supported in container"},
    // Smooth streaming is always in fragments.
    {"ismv", "LargeBoxes", nullptr, "fragments state where they lie"},
    {"ismv", "LargeBoxesHeaderFirst", nullptr, "fragments state where they lie"},
};

bool fits(const char* pattern, std::string_view name) {
    return pattern == nullptr || name == pattern;
}

std::optional<std::string> refusalOf(const std::string& muxer, const Form& form,
                                     const Content& content) {
    for (const Refusal& row : kRefusals) {
        if (row.exceptForm != nullptr && row.exceptForm == std::string_view(form.name)) continue;
        if (fits(row.muxer, muxer) && fits(row.form, form.name) && fits(row.content, content.name))
            return row.words;
    }
    return std::nullopt;
}

/// Five frames of picture, as much sound, and a subtitle: encoded once, and copied by all muxers.
std::string source() {
    const std::string subtitles =
        FfmpegMedia::shared().text("subtitles.srt", "1\n00:00:00,000 --> 00:00:00,200\nHello\n\n");
    return FfmpegMedia::shared().file(
        "source.mov", {"-f", "lavfi", "-i", "testsrc=size=64x36:rate=25:duration=0.2", "-f",
                       "lavfi", "-i", "sine=sample_rate=8000:duration=0.2", "-i", subtitles, "-c:v",
                       "libx264", "-c:a", "aac", "-c:s", "mov_text"});
}

struct Made {
    std::optional<std::string> movie;
    std::string words;  ///< why there is none
};

Made make(const std::string& muxer, const Form& form, const Content& content, bool timecode) {
    Arguments arguments{"-i", source(), "-c", "copy", "-f", muxer};
    arguments.insert(arguments.end(), content.streams.begin(), content.streams.end());
    if (form.movflags != nullptr) arguments.insert(arguments.end(), {"-movflags", form.movflags});
    if (timecode) arguments.insert(arguments.end(), {"-timecode", "01:00:00:00"});
    const std::string name = muxer + form.name + content.name + (timecode ? "Timecode" : "");
    try {
        std::string movie = FfmpegMedia::shared().file(name, arguments);
        if (form.largeBoxes) {
            movie = FfmpegMedia::shared().text(name + "-large",
                                               test::withLargeBoxes(test::fileContents(movie)));
        }
        return {movie, ""};
    } catch (const std::exception& fault) {
        return {std::nullopt, fault.what()};
    }
}

std::vector<std::string> clipsOf(const std::string& folder) {
    std::vector<std::string> clips;
    MatchListener listener;
    listener.onClip = [&](const PathDictionary& clip) {
        clips.push_back(clip.volumeTitle + ", " + clip.filePath.substr(folder.size() + 1) +
                        (clip.qt ? ", QuickTime" : ""));
    };
    FileMatcher().match({folder}, listener);
    std::sort(clips.begin(), clips.end());
    return clips;
}

void expectClaims(const PlacedMovie& placed, bool pictureOrSound) {
    std::vector<std::string> expected{
        "Canon EOS, DCIM/100CANON/MVI_0001.MOV, QuickTime",
        "JVC-QuickTime, PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MOV, QuickTime",
        "RED One, A001.RDM/A001_C001.RDC/A001_C001_F.mov, QuickTime"};
    if (pictureOrSound) {
        expected.insert(expected.begin() + 1, "GoPro, DCIM/100GOPRO/GOPR0001.MP4, QuickTime");
    }
    EXPECT_EQ(clipsOf(placed.card()), expected);
}

void expectAnswers(const QRXQTUtility& utility, const std::string& clip, const std::string& start) {
    SCOPED_TRACE(utility.volumeTitle());
    EXPECT_EQ(utility.startTimecodeForVideoFile(clip), start);
    const QRXMetadataWrapper metadata = utility.metadataWrapperForVideoFilePath(clip);
    EXPECT_EQ(test::filledKeys(metadata),
              std::vector<std::string>{std::string(QRXMediaMetadataStartTimecodeKey)});
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataStartTimecodeKey), start);
    EXPECT_FALSE(utility.videoFileIsDropFrame(clip));
    EXPECT_EQ(utility.metadataFilePathForVideoFile(clip), std::nullopt);
}

TEST(MuxersOfTheFamily, AreAllInTheTable) {
    // One implementation, which names all its muxers above the options that they share.
    EXPECT_THAT(test::ffmpegHelp("muxer=mov"),
                HasSubstr("\nmov/mp4/tgp/psp/tg2/ipod/ismv/f4v muxer AVOptions:"));
    for (const char* muxer : kMuxers) {
        EXPECT_THAT(test::ffmpegHelp(std::string("muxer=") + muxer),
                    HasSubstr("mov/mp4/tgp/psp/tg2/ipod/ismv/f4v muxer AVOptions:"));
    }
}

class EveryMuxer : public testing::TestWithParam<std::tuple<const char*, Form>> {
protected:
    static void check(const Content& content, bool timecode) {
        const auto& [muxer, form] = GetParam();
        const Made made = make(muxer, form, content, timecode);
        if (const auto refusal = refusalOf(muxer, form, content)) {
            EXPECT_FALSE(made.movie) << "is written by now: the table of refusals is out of date";
            EXPECT_THAT(made.words, HasSubstr(*refusal));
            return;
        }
        ASSERT_TRUE(made.movie) << made.words;

        const auto movie = MovieReader().open(*made.movie);
        ASSERT_TRUE(movie);
        EXPECT_EQ(movie->count(TrackMedia::video), content.picture ? 1U : 0U);
        EXPECT_EQ(movie->count(TrackMedia::sound), content.sound ? 1U : 0U);
        const bool hasTrack = fits(muxer, "mov") || fits(muxer, "mp4");
        EXPECT_EQ(movie->count(TrackMedia::timecode),
                  hasTrack && timecode && content.picture ? 1U : 0U);

        const PlacedMovie placed(*made.movie);
        expectClaims(placed, content.picture || content.sound);
        expectAnswers(QRXGoProUtility(), placed.goPro(), "00:00:00:00");
        expectAnswers(QRXREDOneUtility(), placed.redOne(), "00:00:00:00");
        expectAnswers(QRXJVCQTUtility(), placed.jvc(), "00:00:00:00");
        const auto created = creationDate(placed.canonEos());
        ASSERT_TRUE(created);
        expectAnswers(QRXCanonEOSUtility(), placed.canonEos(),
                      QRXTimecodeUtility::dateToTimecode(created->seconds));
        if (timecode) return;  // the tool's report says nothing more of a movie that has one
        EXPECT_EQ(
            QRXGoProUtility().framerateForVideoFile(placed.goPro()),
            content.picture ? QRXVideoFrameRate25 : QRXTimecodeUtility::defaultVideoFrameRate());
    }
};

TEST_P(EveryMuxer, WritesClipsThatAreKnownByPlaceAndContent) {
    for (const Content& content : kContents) {
        for (const bool timecode : {false, true}) {
            SCOPED_TRACE(std::string(content.name) + (timecode ? " with a timecode" : ""));
            check(content, timecode);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, EveryMuxer,
                         testing::Combine(testing::ValuesIn(kMuxers), testing::ValuesIn(kForms)),
                         [](const auto& row) {
                             return std::string("Muxer_") + std::get<0>(row.param) + "_" +
                                    std::get<1>(row.param).name;
                         });

// Muxers of whole streams, whose media lie in files beside the one that is named.

struct StreamFile {
    const char* name;
    Arguments options;
    const char* list;   ///< what the muxer is told to write
    const char* movie;  ///< what it writes beside it
    bool claimed;
};

void PrintTo(const StreamFile& row, std::ostream* out) {
    *out << row.name;
}

const StreamFile kStreamFiles[] = {
    {"HlsInOneFile",
     {"-f", "hls", "-hls_segment_type", "fmp4", "-hls_flags", "single_file"},
     "hls/x.m3u8",
     "hls/x.m4s",
     true},
    {"DashPicture", {"-f", "dash", "-single_file", "1"}, "dash/x.mpd", "dash/x-stream0.mp4", true},
    {"DashSound", {"-f", "dash", "-single_file", "1"}, "dash/x.mpd", "dash/x-stream1.mp4", true},
    {"HeaderAlone", {"-f", "dash"}, "parts/x.mpd", "parts/init-stream0.m4s", true},
    {"FragmentsAlone", {"-f", "dash"}, "parts/x.mpd", "parts/chunk-stream0-00001.m4s", false},
    {"Segment",
     {"-f", "segment", "-segment_format", "mp4"},
     "segments/x%d.mp4",
     "segments/x0.mp4",
     true},
};

class EveryStreamMuxer : public testing::TestWithParam<StreamFile> {};

TEST_P(EveryStreamMuxer, WritesFilesThatAreClipsWhenTheyHaveAHeader) {
    const StreamFile& row = GetParam();
    Arguments arguments{"-i", source(), "-c", "copy", "-map", "0:v", "-map", "0:a"};
    arguments.insert(arguments.end(), row.options.begin(), row.options.end());
    const PlacedMovie placed(FfmpegMedia::shared().fileBeside(row.movie, row.list, arguments));
    expectClaims(placed, row.claimed);
}

INSTANTIATE_TEST_SUITE_P(Files, EveryStreamMuxer, testing::ValuesIn(kStreamFiles),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(AnotherContainer, UnderTheNameOfAGoProClipIsNone) {
    const PlacedMovie placed(FfmpegMedia::shared().file(
        "x.mkv", {"-i", source(), "-c", "copy", "-map", "0:v", "-map", "0:a"}));
    EXPECT_FALSE(QRXGoProUtility().filePathMatchesVolumeStructure(placed.goPro()));
    EXPECT_FALSE(QRXQTUtility().filePathMatchesVolumeStructure(placed.goPro()));
}

}  // namespace
}  // namespace qrx
