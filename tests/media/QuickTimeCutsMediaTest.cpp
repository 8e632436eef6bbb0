#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "PlacedMovie.h"
#include "support/FfmpegMedia.h"
#include "support/LargeBoxes.h"
#include "volumes/QRXCanonEOSUtility.h"
#include "volumes/QRXGoProUtility.h"
#include "volumes/QRXJVCQTUtility.h"
#include "volumes/QRXREDOneUtility.h"

// A clip whose copying broke off, at every length that it may have been left with.

namespace qrx {
namespace {

namespace fs = std::filesystem;
using test::FfmpegMedia;
using test::PlacedMovie;
using Arguments = std::vector<std::string>;

const Arguments kPicture{"-f",   "lavfi", "-i",   "testsrc=size=64x36:rate=25:duration=0.12",
                         "-c:v", "mpeg4", "-g",   "1",
                         "-q:v", "31",    "-map", "0:v"};
const Arguments kTone{"-f",   "lavfi", "-i",   "sine=sample_rate=8000:duration=0.1",
                      "-c:a", "aac",   "-b:a", "8k"};

Arguments with(Arguments first, const Arguments& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

struct CutMovie {
    const char* name;
    Arguments arguments;
    const char* handler;  ///< of the track that makes it a clip
    bool largeBoxes = false;
};

void PrintTo(const CutMovie& row, std::ostream* out) {
    *out << row.name;
}

const CutMovie kMovies[] = {
    {"Mov", with(kPicture, {"-f", "mov"}), "vide"},
    {"MovWithTimecode", with(kPicture, {"-f", "mov", "-timecode", "01:00:00:00"}), "vide"},
    {"Mp4", with(kPicture, {"-f", "mp4"}), "vide"},
    {"HeaderFirst", with(kPicture, {"-f", "mp4", "-movflags", "faststart"}), "vide"},
    {"LargeBoxes", with(kPicture, {"-f", "mp4"}), "vide", true},
    {"Fragmented", with(kPicture, {"-f", "mp4", "-movflags", "frag_keyframe+empty_moov"}), "vide"},
    {"Cmaf", with(kPicture, {"-f", "mp4", "-movflags", "cmaf"}), "vide"},
    {"Phone", with(kPicture, {"-f", "3gp"}), "vide"},
    {"SmoothStreaming", with(kPicture, {"-f", "ismv"}), "vide"},
    {"SoundOnly", with(kTone, {"-f", "mp4"}), "soun"},
};

class CutMovies : public testing::TestWithParam<CutMovie> {};

TEST_P(CutMovies, AreGoProClipsFromTheLengthAtWhichTheirTrackIsKnown) {
    const CutMovie& row = GetParam();
    std::string movie = FfmpegMedia::shared().file(row.name, row.arguments);
    if (row.largeBoxes) {
        movie = FfmpegMedia::shared().text("large.mp4",
                                           test::withLargeBoxes(test::fileContents(movie)));
    }
    const PlacedMovie placed(movie);
    const std::string bytes = test::fileContents(movie);
    const std::size_t handler = bytes.find(row.handler);
    ASSERT_NE(handler, std::string::npos);
    const std::size_t track = bytes.find("trak");
    ASSERT_LT(track, handler);

    const QRXGoProUtility goPro;
    std::size_t shortestClip = bytes.size() + 1;
    for (std::size_t length = bytes.size() + 1; length-- > 0;) {
        fs::resize_file(placed.goPro(), length);
        const bool claimed = goPro.filePathMatchesVolumeStructure(placed.goPro());
        if (claimed) {
            ASSERT_EQ(length + 1, shortestClip) << "a shorter piece is a clip, a longer is not";
            shortestClip = length;
        }
    }
    EXPECT_GE(shortestClip, handler + 4) << "before anything says what the track is";
    EXPECT_LE(shortestClip, bytes.find("stbl")) << "long after it was said";
}

TEST_P(CutMovies, AreClipsOfTheOtherCamerasByTheirNamesAlone) {
    const PlacedMovie placed(FfmpegMedia::shared().file(GetParam().name, GetParam().arguments));
    for (const std::size_t length : {0U, 1U, 8U, 100U}) {
        SCOPED_TRACE(length);
        for (const std::string& clip : {placed.canonEos(), placed.redOne(), placed.jvc()})
            fs::resize_file(clip, length);
        EXPECT_TRUE(QRXCanonEOSUtility().filePathMatchesVolumeStructure(placed.canonEos()));
        EXPECT_TRUE(QRXREDOneUtility().filePathMatchesVolumeStructure(placed.redOne()));
        EXPECT_TRUE(QRXJVCQTUtility().filePathMatchesVolumeStructure(placed.jvc()));
        EXPECT_EQ(QRXREDOneUtility().startTimecodeForVideoFile(placed.redOne()), "00:00:00:00");
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, CutMovies, testing::ValuesIn(kMovies),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx
