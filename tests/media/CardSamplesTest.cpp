#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXQTUtility.h"

// What is known of each file of the folder that QRX_SAMPLES names: files of real cameras and of
// other people's tools, which do not travel with the sources.

namespace qrx {
namespace {

namespace fs = std::filesystem;

struct Sample {
    const char* file;
    const char* title;  ///< of the layout that claims it where it lies
    QRXVideoFrameRate rate;
    const char* start;
    bool quickTime;
};

// Rates of 10, 120 and a third of a frame a second are none that hosts know.
constexpr QRXVideoFrameRate kNone = QRXVideoFrameRateUndefined;

constexpr Sample kSamples[] = {
    {"movies/abema__go-mp4__sample.mp4", "General Movies", kNone, "00:00:00:00", true},
    {"movies/abema__go-mp4__sample_fragmented.mp4", "General Movies", kNone, "00:00:00:00", true},
    // a header without media: nothing for the tool to describe
    {"movies/abema__go-mp4__sample_init.enca.mp4", "Apple QuickTime", kNone, "00:00:00:00", true},
    {"movies/adobe__XMP-Toolkit-SDK__BlueSquare.mov", "General Movies", kNone, "00:00:00:00", true},
    {"movies/drewnoakes__metadata-extractor-images__sample.3gp", "General Movies", kNone,
     "00:00:00:00", true},
    {"movies/drewnoakes__metadata-extractor-images__sample_mpeg4.mp4", "General Movies",
     QRXVideoFrameRate30, "00:00:00:00", true},
    {"movies/drewnoakes__metadata-extractor-images__with-gps.mov", "General Movies",
     QRXVideoFrameRate29_97, "00:00:00:00", true},
    {"movies/jcodec__jcodec__itunes.mov", "General Movies", kNone, "00:00:00:00", true},
    {"movies/jcodec__jcodec__keyed.mp4", "General Movies", kNone, "00:00:00:00", true},
    {"movies/jcodec__jcodec__orientation.mp4", "General Movies", QRXVideoFrameRate30, "00:00:00:00",
     true},
    {"mts/drewnoakes__metadata-extractor-images__Sony_ILCE-7M3__A7M3_.mts", "General Movies",
     QRXVideoFrameRate50p, "00:00:00:00", false},
    {"mxf/bbc__bmx__d10_qt_klv_sample.mxf", "MXF", QRXVideoFrameRate25, "23:58:30:00", false},
    // the first timecode component of both starts at 0, and a base of 24 counts as 23.976
    {"mxf/jcodec__jcodec__timecode.mxf", "MXF", QRXVideoFrameRate24, "00:00:00;00", false},
    {"mxf/jcodec__jcodec__two_timecodes.mxf", "MXF", QRXVideoFrameRate24, "00:00:00;00", false},
    {"mxf/sandflow__regmxflib__audio.mxf", "MXF", kNone, "00:00:00:00", false},
    {"mxf/sandflow__regmxflib__iab.mxf", "MXF", kNone, "00:00:00:00", false},
    {"p2/ntsc25ndf/CONTENTS/VIDEO/00012C.MXF", "Panasonic P2", QRXVideoFrameRate29_97,
     "08:20:00:00", false},
    {"p2/pal50/CONTENTS/VIDEO/0001VZ.MXF", "Panasonic P2", QRXVideoFrameRate25, "10:00:00:00",
     false},
};

/// Where a copy of the file is a camera's clip.
struct Place {
    const char* folder;  ///< of samples
    const char* name;
    const char* title;
};

constexpr Place kPlaces[] = {
    {"movies", "DCIM/100GOPRO/GOPR0001.MP4", "GoPro"},
    {"movies", "DCIM/100CANON/MVI_0001.MOV", "Canon EOS"},
    {"movies", "A001.RDM/A001_C001.RDC/A001_C001_F.mov", "RED One"},
    {"movies", "PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MOV", "JVC-QuickTime"},
    {"mts", "AVCHD/BDMV/STREAM/00000.MTS", "Sony NXCAM AVCHD"},
    {"mxf", "CONTENTS/CLIPS001/AA0001/AA000101.MXF", "Canon XF"},
    {"mxf", "CONTENTS/VIDEO/0001AB.MXF", "Panasonic P2"},
};

const QRXHDMediaVolumeUtilityObject& claiming(const std::string& file) {
    return QRXHDMediaVolumeAggregate::sharedInstance().utilityForFileAtPath(file);
}

class CardSamples : public testing::Test {
protected:
    void SetUp() override {
        const char* const folder = std::getenv("QRX_SAMPLES");
        if (folder == nullptr) GTEST_SKIP() << "QRX_SAMPLES names no folder of sample files";
        folder_ = folder;
    }

    [[nodiscard]] fs::path operator/(const char* name) const { return folder_ / name; }

    fs::path folder_;
};

TEST_F(CardSamples, AreAnsweredAsIsKnownOfThem) {
    for (const Sample& sample : kSamples) {
        SCOPED_TRACE(sample.file);
        const std::string file = *this / sample.file;
        ASSERT_TRUE(fs::exists(file));
        const auto& utility = claiming(file);
        EXPECT_EQ(utility.volumeTitle(), sample.title);
        EXPECT_EQ(utility.framerateForVideoFile(file), sample.rate);
        EXPECT_EQ(utility.startTimecodeForVideoFile(file), sample.start);
        EXPECT_FALSE(utility.videoFileIsDropFrame(file));
        EXPECT_EQ(QRXQTUtility().filePathMatchesVolumeStructure(file), sample.quickTime);
    }
}

TEST_F(CardSamples, AreAllKnown) {
    std::set<std::string> known;
    for (const Sample& sample : kSamples)
        known.insert(sample.file);
    for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
        const std::string name = fs::relative(entry.path(), folder_);
        const bool isCompanion = name == "README.md" || name.find("/AUDIO/") != std::string::npos ||
                                 name.find("/CLIP/") != std::string::npos ||
                                 name.find("/ICON/") != std::string::npos ||
                                 name.ends_with("/LASTCLIP.TXT");
        if (entry.is_directory() || isCompanion) continue;
        EXPECT_EQ(known.count(name), 1U) << "nothing is known of " << name;
    }
}

TEST_F(CardSamples, AreClipsWhereCamerasPutThem) {
    const test::TemporaryFolder cards;
    for (const Sample& sample : kSamples) {
        for (const Place& place : kPlaces) {
            const std::string name = sample.file;
            if (name.substr(0, name.find('/')) != place.folder) continue;
            SCOPED_TRACE(name + " as " + place.name);
            const fs::path clip = fs::path(cards / fs::path(name).filename().string()) / place.name;
            fs::create_directories(clip.parent_path());
            fs::copy_file(*this / sample.file, clip);
            EXPECT_EQ(claiming(clip).volumeTitle(), place.title);
        }
    }
}

TEST_F(CardSamples, SoundOfAP2CardBelongsToItsClip) {
    for (const auto& [clip, first] : {std::pair("p2/ntsc25ndf/CONTENTS/VIDEO/00012C.MXF",
                                                "p2/ntsc25ndf/CONTENTS/AUDIO/00012C00.MXF"),
                                      std::pair("p2/pal50/CONTENTS/VIDEO/0001VZ.MXF",
                                                "p2/pal50/CONTENTS/AUDIO/0001VZ00.MXF")}) {
        const std::string file = *this / clip;
        const auto sounds = claiming(file).audioFilesForVideoFile(file);
        ASSERT_TRUE(sounds && !sounds->empty()) << clip;
        EXPECT_EQ(sounds->front(), (*this / first).string());
    }
}

}  // namespace
}  // namespace qrx
