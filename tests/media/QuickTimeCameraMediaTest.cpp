#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/FfmpegMedia.h"
#include "volumes/QRXCanonEOSUtility.h"
#include "volumes/QRXGoProUtility.h"
#include "volumes/QRXQTUtility.h"

namespace qrx {
namespace {

using test::FfmpegMedia;
using test::pictureAndTone;
using test::testPicture;
using test::testTone;
using Arguments = std::vector<std::string>;

Arguments joined(Arguments first, const Arguments& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Arguments subtitlesAlone() {
    const std::string subtitles =
        FfmpegMedia::shared().text("subtitles.srt", "1\n00:00:00,000 --> 00:00:01,000\nHello\n\n");
    return {"-i", subtitles, "-c:s", "mov_text"};
}

struct PlacedMovie {
    const char* name;
    Arguments (*arguments)();
    bool claimed;
};

void PrintTo(const PlacedMovie& movie, std::ostream* out) {
    *out << movie.name;
}

const PlacedMovie kMovies[] = {
    {"PictureAndSound",
     [] {
         return pictureAndTone({"-c:v", "mpeg4", "-c:a", "aac"});
     },
     true},
    {"PictureOnly",
     [] {
         return joined(testPicture(), {"-c:v", "mpeg4"});
     },
     true},
    {"SoundOnly",
     [] {
         return joined(testTone(), {"-c:a", "aac"});
     },
     true},
    {"Timecode",
     [] {
         return joined(testPicture(), {"-c:v", "mpeg4", "-timecode", "01:00:00:00"});
     },
     true},
    {"Fragmented",
     [] {
         return joined(testPicture(), {"-c:v", "mpeg4", "-movflags", "frag_keyframe+empty_moov"});
     },
     true},
    {"HeaderFirst",
     [] {
         return joined(testPicture(), {"-c:v", "mpeg4", "-movflags", "faststart"});
     },
     true},
    {"SubtitlesOnly", subtitlesAlone, false},
    {"AnotherContainer",
     [] {
         return joined(testPicture(), {"-c:v", "mpeg4", "-f", "matroska"});
     },
     false},
};

class PlacedMovies : public testing::TestWithParam<PlacedMovie> {};

TEST_P(PlacedMovies, InAGoProFolderAreClaimedWhenTheyHavePictureOrSound) {
    const std::string clip = FfmpegMedia::shared().file(
        std::string(GetParam().name) + "/DCIM/100GOPRO/GOPR0001.MP4", GetParam().arguments());
    EXPECT_EQ(QRXGoProUtility().filePathMatchesVolumeStructure(clip), GetParam().claimed);
    EXPECT_EQ(QRXQTUtility().filePathMatchesVolumeStructure(clip), GetParam().claimed);
    EXPECT_FALSE(QRXCanonEOSUtility().filePathMatchesVolumeStructure(clip));
    EXPECT_EQ(QRXGoProUtility().startTimecodeForVideoFile(clip), "00:00:00:00");
}

INSTANTIATE_TEST_SUITE_P(Kinds, PlacedMovies, testing::ValuesIn(kMovies),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx
