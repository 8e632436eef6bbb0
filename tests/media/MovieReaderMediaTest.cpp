#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ProbedTracks.h"
#include "readers/ByteSource.h"
#include "readers/MovieReader.h"
#include "support/BoxWriter.h"
#include "support/FfmpegMedia.h"

namespace qrx {
namespace {

using test::FfmpegMedia;
using test::pictureAndTone;
using test::probedTracks;
using test::testPicture;
using test::testTone;
using test::tracksOf;
using Arguments = std::vector<std::string>;

Arguments joined(Arguments first, const Arguments& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Arguments withSubtitles(const std::string& codec) {
    const std::string subtitles =
        FfmpegMedia::shared().text("subtitles.srt", "1\n00:00:00,000 --> 00:00:01,000\nHello\n\n");
    return joined(testPicture(), {"-i", subtitles, "-c:v", "mpeg4", "-c:s", codec});
}

Arguments withChapters() {
    const std::string chapters = FfmpegMedia::shared().text(
        "chapters.txt",
        ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=500\ntitle=One\n"
        "[CHAPTER]\nTIMEBASE=1/1000\nSTART=500\nEND=1000\ntitle=Two\n");
    return joined(testPicture(), {"-i", chapters, "-map_metadata", "1", "-c:v", "mpeg4"});
}

Arguments withCover() {
    const std::string cover =
        FfmpegMedia::shared().file("cover.jpg", joined(testPicture(), {"-frames:v", "1"}));
    return joined(testTone(), {"-i", cover, "-map", "0", "-map", "1", "-c:a", "aac", "-c:v", "copy",
                               "-disposition:v", "attached_pic"});
}

Arguments twoPicturesThreeTones() {
    return pictureAndTone({"-map", "0", "-map", "0", "-map", "1", "-map", "1", "-map", "1", "-c:v",
                           "mpeg4", "-c:a", "aac"});
}

/// The media box of `path` gets a 64-bit size, for which its writer left eight bytes of room.
std::string withLargeMediaBox(const std::string& path) {
    std::string bytes = test::fileContents(path);
    const std::size_t mdat = bytes.find("mdat");
    const std::string room = bytes.substr(mdat - 12, 8);  // size 8 and "wide" or "free"
    EXPECT_TRUE(room.ends_with("wide") || room.ends_with("free")) << "no room in " << path;
    std::uint64_t size = 8;
    for (std::size_t i = 0; i < 4; ++i)
        size += std::uint64_t{static_cast<unsigned char>(bytes[mdat - 1 - i])} << (8 * i);
    bytes.replace(mdat - 12, 16, test::largeBoxStating(size, "mdat"));
    return FfmpegMedia::shared().text(std::filesystem::path(path).stem().string() + "-64.mov",
                                      bytes);
}

struct MediaCase {
    const char* name;
    const char* file;
    Arguments (*arguments)();
    const char* tracks;
    const char* differsBecause = nullptr;  ///< why ffprobe sees other tracks; null: it does not
};

constexpr const char* kPictureAndSound = "video 1, sound 1, timecode 0, text 0, other 0";
constexpr const char* kPictureOnly = "video 1, sound 0, timecode 0, text 0, other 0";
constexpr const char* kSoundOnly = "video 0, sound 1, timecode 0, text 0, other 0";
constexpr const char* kNotOurs = "the container is none of QuickTime's; the ffmpeg tool reads it";

Arguments mpeg4Aac() {
    return pictureAndTone({"-c:v", "mpeg4", "-c:a", "aac"});
}

const MediaCase kMedia[] = {
    {"Mov", "a.mov", mpeg4Aac, kPictureAndSound},
    {"Mp4", "a.mp4", mpeg4Aac, kPictureAndSound},
    {"M4v", "a.m4v", mpeg4Aac, kPictureAndSound},
    {"M4a", "a.m4a",
     [] {
         return joined(testTone(), {"-c:a", "aac"});
     },
     kSoundOnly},
    {"ThreeGp", "a.3gp", mpeg4Aac, kPictureAndSound},
    {"HeaderFirst", "faststart.mp4",
     [] {
         return joined(mpeg4Aac(), {"-movflags", "faststart"});
     },
     kPictureAndSound},
    {"Fragmented", "fragmented.mp4",
     [] {
         return joined(mpeg4Aac(), {"-movflags", "frag_keyframe+empty_moov"});
     },
     kPictureAndSound},
    {"FragmentedWithIndex", "fragmented.mov",
     [] {
         return joined(mpeg4Aac(), {"-movflags", "frag_keyframe+empty_moov+global_sidx"});
     },
     kPictureAndSound},
    {"SoundOnly", "sound.mov",
     [] {
         return joined(testTone(), {"-c:a", "pcm_s16le"});
     },
     kSoundOnly},
    {"PictureOnly", "picture.mov",
     [] {
         return joined(testPicture(), {"-c:v", "mjpeg"});
     },
     kPictureOnly},
    {"MovWithTimecode", "timecode.mov",
     [] {
         return joined(mpeg4Aac(), {"-timecode", "01:00:00:00"});
     },
     "video 1, sound 1, timecode 1, text 0, other 0"},
    {"Mp4WithTimecode", "timecode.mp4",
     [] {
         return joined(mpeg4Aac(), {"-timecode", "01:00:00:00"});
     },
     "video 1, sound 1, timecode 1, text 0, other 0"},
    {"Mp4WithSubtitles", "subtitles.mp4", [] { return withSubtitles("mov_text"); },
     "video 1, sound 0, timecode 0, text 1, other 0"},
    {"MovWithSubtitles", "subtitles.mov", [] { return withSubtitles("mov_text"); },
     "video 1, sound 0, timecode 0, text 1, other 0"},
    {"Chapters", "chapters.mov", withChapters, "video 1, sound 0, timecode 0, text 1, other 0"},
    {"SeveralOfEach", "several.mov", twoPicturesThreeTones,
     "video 2, sound 3, timecode 0, text 0, other 0"},
    {"CoverArt", "cover.m4a", withCover, kSoundOnly,
     "cover art lies in the user data and is no track; ffprobe shows it as a video stream"},
    {"Avi", "a.avi", mpeg4Aac, kPictureAndSound},
    {"AviPictureOnly", "picture.avi",
     [] {
         return joined(testPicture(), {"-c:v", "mjpeg"});
     },
     kPictureOnly},
    {"Wav", "a.wav", testTone, kSoundOnly},
    {"Rf64", "rf64.wav",
     [] {
         return joined(testTone(), {"-rf64", "always"});
     },
     kSoundOnly},
    {"Aiff", "a.aiff", testTone, kSoundOnly},
    {"AiffC", "a.aifc",
     [] {
         return joined(testTone(), {"-c:a", "pcm_s16le", "-f", "aiff"});
     },
     kSoundOnly},
    {"Matroska", "a.mkv", mpeg4Aac, "no movie", kNotOurs},
    {"TransportStream", "a.mts",
     [] {
         return pictureAndTone({"-c:v", "mpeg2video", "-f", "mpegts"});
     },
     "no movie", kNotOurs},
    {"Mxf", "a.mxf",
     [] {
         return pictureAndTone({"-c:v", "mpeg2video", "-c:a", "pcm_s16le", "-ar", "48000"});
     },
     "no movie", kNotOurs},
    {"Mp3", "a.mp3", testTone, "no movie", kNotOurs},
    {"Jpeg", "a.jpg",
     [] {
         return joined(testPicture(), {"-frames:v", "1"});
     },
     "no movie", "a still picture is no movie; ffprobe shows every picture as a video stream"},
};

class MovieFromFfmpeg : public testing::TestWithParam<MediaCase> {};

TEST_P(MovieFromFfmpeg, HasTheTracksThatFfprobeSees) {
    const MediaCase& media = GetParam();
    const std::string path = FfmpegMedia::shared().file(media.file, media.arguments());
    EXPECT_EQ(tracksOf(MovieReader().open(path)), media.tracks);
    if (media.differsBecause == nullptr) {
        EXPECT_EQ(probedTracks(path), media.tracks);
    } else {
        EXPECT_NE(probedTracks(path), media.tracks) << "no longer: " << media.differsBecause;
    }
}

INSTANTIATE_TEST_SUITE_P(Containers, MovieFromFfmpeg, testing::ValuesIn(kMedia),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(MovieFromFfmpeg, With64BitMediaBox) {
    const std::string path = withLargeMediaBox(FfmpegMedia::shared().file("wide.mov", mpeg4Aac()));
    EXPECT_EQ(tracksOf(MovieReader().open(path)), kPictureAndSound);
    EXPECT_EQ(probedTracks(path), kPictureAndSound);
}

TEST(MovieFromFfmpeg, TextIsNoMovie) {
    const std::string path = FfmpegMedia::shared().text("a.txt", "Just a few words.\n");
    EXPECT_EQ(tracksOf(MovieReader().open(path)), "no movie");
}

TEST(MovieFromFfmpeg, NaturalSize) {
    for (const char* name : {"size.mov", "size.mp4", "size.avi"}) {
        SCOPED_TRACE(name);
        const auto movie = MovieReader().open(FfmpegMedia::shared().file(name, mpeg4Aac()));
        ASSERT_TRUE(movie);
        EXPECT_EQ(movie->naturalWidth, 64);
        EXPECT_EQ(movie->naturalHeight, 48);
    }
}

TEST(MovieFromFfmpeg, NaturalSizeIsTheSizeAsShown) {
    // ffprobe tells the coded size, 64 x 48; these pixels are 2:1.
    const std::string path = FfmpegMedia::shared().file(
        "anamorphic.mp4", joined(testPicture(), {"-vf", "setsar=2/1", "-c:v", "mpeg4"}));
    const auto movie = MovieReader().open(path);
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalWidth, 128);
    EXPECT_EQ(movie->naturalHeight, 48);
    ASSERT_EQ(test::probedStreams(path).size(), 1U);
    EXPECT_EQ(test::probedStreams(path).front().width, 64);
}

TEST(MovieFromFfmpeg, DisplayNameAndTimes) {
    const Arguments labels{"-metadata", "title=Opening", "-metadata",
                           "creation_time=2011-03-05T14:02:09Z"};
    for (const char* name : {"named.mov", "named.mp4"}) {
        SCOPED_TRACE(name);
        const auto movie =
            MovieReader().open(FfmpegMedia::shared().file(name, joined(mpeg4Aac(), labels)));
        ASSERT_TRUE(movie);
        EXPECT_EQ(movie->displayName, "Opening");
        EXPECT_EQ(movie->creationTime, 1'299'333'729);
    }
    const auto keys = MovieReader().open(FfmpegMedia::shared().file(
        "keys.mov", joined(mpeg4Aac(), {"-movflags", "use_metadata_tags", "-metadata",
                                        "com.apple.quicktime.displayname=Shown"})));
    ASSERT_TRUE(keys);
    EXPECT_EQ(keys->displayName, "Shown");
    const auto avi =
        MovieReader().open(FfmpegMedia::shared().file("named.avi", joined(mpeg4Aac(), labels)));
    ASSERT_TRUE(avi);
    EXPECT_EQ(avi->displayName, "Opening");
    const auto unnamed = MovieReader().open(FfmpegMedia::shared().file("unnamed.mov", mpeg4Aac()));
    ASSERT_TRUE(unnamed);
    EXPECT_EQ(unnamed->displayName, "unnamed.mov");
    EXPECT_FALSE(unnamed->creationTime);
}

TEST(MovieFromFfmpeg, EveryTruncationHasAnAnswer) {
    const std::string whole = test::fileContents(FfmpegMedia::shared().file(
        "cut.mov", joined(mpeg4Aac(), {"-movflags", "faststart", "-timecode", "01:00:00:00"})));
    std::size_t tracksBefore = 0;
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        const std::string part = whole.substr(0, cut);
        const MemoryByteSource source(std::as_bytes(std::span(part)));
        const auto movie = describeMovie(source);
        const std::size_t count = movie ? movie->tracks.size() : 0;
        ASSERT_GE(count, tracksBefore) << cut;
        tracksBefore = count;
    }
    EXPECT_EQ(tracksBefore, 3U);
}

}  // namespace
}  // namespace qrx
