#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/PathText.h"
#include "readers/QRXFFmpegImageUtility.h"
#include "readers/QRXFFmpegTerminalWrapper.h"
#include "support/FfmpegMedia.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

namespace fs = std::filesystem;
using test::FfmpegMedia;
using Strings = std::vector<std::string>;

/// What the tool's report must yield for a file that the same tool wrote. The texts are the tool's
/// own, so the test asks how they begin.
struct MediaCase {
    const char* name;
    const char* file;
    Strings arguments;
    std::optional<std::string> videoCodec;
    bool hasBitRate;
    std::optional<std::string> frameRate;
    const char* audioStreams;
    std::optional<std::string> audioCodec;
    std::optional<std::string> sampleRate;
};

Strings picture(const Strings& more) {
    auto arguments = test::testPicture();
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

Strings tone(const Strings& more) {
    auto arguments = test::testTone();
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

std::vector<MediaCase> mediaCases() {
    const Strings twoTones{"-map", "0:v", "-map", "1:a", "-map", "1:a", "-c:v", "mpeg4"};
    return {
        {"QuickTimeMovie", "a.mov", test::pictureAndTone({"-c:v", "libx264", "-c:a", "aac"}),
         "h264 (", true, " 25 ", "1", "aac (", " 8000 "},
        {"Mpeg4Movie", "a.mp4", test::pictureAndTone({"-c:v", "mpeg4", "-c:a", "aac"}), "mpeg4 (",
         true, " 25 ", "1", "aac (", " 8000 "},
        {"TwoSounds", "two.mov", test::pictureAndTone(twoTones), "mpeg4 (", true, " 25 ", "2",
         "aac (", " 8000 "},
        {"PictureAlone", "silent.mov", picture({"-c:v", "mpeg4"}), "mpeg4 (", true, " 25 ", "0",
         std::nullopt, std::nullopt},
        // Matroska states no rate of the streams, so neither line ends in "/s".
        {"Matroska", "a.mkv", test::pictureAndTone({"-c:v", "libx264", "-c:a", "aac"}),
         std::nullopt, true, " 25 ", "1", std::nullopt, std::nullopt},
        {"Avi", "a.avi", test::pictureAndTone({"-c:v", "mpeg4", "-c:a", "mp3", "-ar", "44100"}),
         "mpeg4 (", true, " 25 ", "1", "mp3 (", " 44100 "},
        // A transport stream states the sound's rate alone: the picture's line runs on to it.
        {"TransportStream", "a.mts",
         test::pictureAndTone({"-c:v", "libx264", "-c:a", "ac3", "-ar", "48000"}), "h264 (", true,
         " 25 ", "1", "ac3 (", " 48000 "},
        {"Mxf", "a.mxf",
         test::pictureAndTone({"-c:v", "mpeg2video", "-c:a", "pcm_s16le", "-ar", "48000"}),
         "mpeg2video (", true, " 25 ", "1", "pcm_s16le", " 48000 "},
        {"Wav", "a.wav", tone({}), std::nullopt, true, std::nullopt, "1", "pcm_s16le (", " 8000 "},
        {"Mp3", "a.mp3", tone({"-ar", "44100"}), std::nullopt, true, std::nullopt, "1", "mp3",
         " 44100 "},
        {"Jpeg", "a.jpg", picture({"-frames:v", "1"}), std::nullopt, false, " 25 ", "0",
         std::nullopt, std::nullopt},
    };
}

class ReportOfRealMedia : public testing::TestWithParam<MediaCase> {};

void expectBeginning(const std::optional<std::string>& value,
                     const std::optional<std::string>& beginning) {
    ASSERT_EQ(value.has_value(), beginning.has_value()) << value.value_or("(absent)");
    if (value) {
        EXPECT_TRUE(value->starts_with(*beginning)) << *value;
    }
}

TEST_P(ReportOfRealMedia, YieldsItsValues) {
    const auto& row = GetParam();
    const auto path = FfmpegMedia::shared().file(row.file, row.arguments);
    const auto metadata = QRXFFmpegTerminalWrapper().metadataWrapperForVideoFile(path);

    // A lone picture has no duration; what has no bit rate has no duration either.
    expectBeginning(metadata.valueForKey(QRXMediaMetadataVideoDurationKey),
                    row.hasBitRate ? "00:00:0" : "N/A");
    const auto bitRate = metadata.valueForKey(QRXMediaMetadataVideoBitRateKey);
    EXPECT_EQ(bitRate.has_value(), row.hasBitRate) << bitRate.value_or("(absent)");
    EXPECT_TRUE(!bitRate || bitRate->ends_with(" kb")) << *bitRate;
    expectBeginning(metadata.valueForKey(QRXMediaMetadataVideoCodecTitleKey), row.videoCodec);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoFrameRate), row.frameRate);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataAudioChannelsKey), row.audioStreams);
    expectBeginning(metadata.valueForKey(QRXMediaMetadataAudioCodecTitleKey), row.audioCodec);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataAudioBitRateKey), row.sampleRate);
}

INSTANTIATE_TEST_SUITE_P(Formats, ReportOfRealMedia, testing::ValuesIn(mediaCases()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(ReportOfRealFiles, KeptTheCodecTagOfAMovieIsTakenForItsDimensions) {
    const auto path = FfmpegMedia::shared().file("tag.mov", picture({"-c:v", "libx264"}));
    const auto metadata = QRXFFmpegTerminalWrapper().metadataWrapperForVideoFile(path);
    const auto codec = metadata.valueForKey(QRXMediaMetadataVideoCodecTitleKey);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataCodecDimensionsKey), codec);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataCodecHeightKey), "31637661)");
}

TEST(ReportOfRealFiles, ATextIsNoVideo) {
    const auto path = FfmpegMedia::shared().text("notes.txt", "Nothing but words.\n");
    const auto metadata = QRXFFmpegTerminalWrapper().metadataWrapperForVideoFile(path);
    EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoCodecTitleKey), std::nullopt);
}

TEST(ReportOfRealFiles, AnEmptyAMissingAndAFolderGiveNothing) {
    const test::TemporaryFolder folder;
    const QRXFFmpegTerminalWrapper wrapper;
    for (const auto& path :
         {folder.write("empty.mov"), folder / "missing.mov", folder.makeFolder("folder.mov")}) {
        SCOPED_TRACE(path);
        EXPECT_TRUE(wrapper.runFFmpegInfoCommandForVideoFile(path).has_value());
        const auto metadata = wrapper.metadataWrapperForVideoFile(path);
        EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataAudioChannelsKey), std::nullopt);
    }
}

TEST(ReportOfRealFiles, HostileNamesReachTheToolUnchanged) {
    const auto movie = FfmpegMedia::shared().file("plain.mov", picture({"-c:v", "mpeg4"}));
    const test::TemporaryFolder folder;
    for (const char* const name :
         {"$(touch x) `y` \"z\" 'w'.mov", "a\nInput #1, b.mov", "a:b.mov", "-y.mov", "50%d.mov",
          "caf\xE9.mov", "\xE5\xB1\xB1.mov", "a\\b;c|d&e.mov", "concat:a|b.mov"}) {
        SCOPED_TRACE(name);
        const auto path = folder / name;
        fs::copy_file(movie, path);
        const auto metadata = QRXFFmpegTerminalWrapper().metadataWrapperForVideoFile(path);
        EXPECT_EQ(metadata.valueForKey(QRXMediaMetadataVideoFrameRate), " 25 ");
    }
}

struct NamedMovie {
    const char* name;
    const char* movie;
};

class StillOfRealMedia : public testing::TestWithParam<NamedMovie> {
protected:
    std::string movie_ = FfmpegMedia::shared().file("still.mov", picture({"-c:v", "libx264"}));
    test::TemporaryFolder folder_;
};

bool isJpeg(const std::string& path) {
    return test::fileContents(path).starts_with("\xFF\xD8\xFF");
}

Strings filesBelow(const std::string& folder) {
    Strings files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) files.push_back(entry.path().string());
    }
    return files;
}

TEST_P(StillOfRealMedia, IsTheOnlyFileInItsFolder) {
    const auto movie = folder_ / "card" + "/" + GetParam().movie + ".mov";
    fs::create_directories(fs::path(movie).parent_path());
    fs::copy_file(movie_, movie);
    const auto stills = folder_.makeFolder("stills");

    const auto image = QRXFFmpegImageUtility().createImageFileForMovie(movie, stills);
    EXPECT_EQ(image, stills + "/" + lastPathComponent(movie) + "movieImage.jpg");
    EXPECT_EQ(filesBelow(stills), Strings{image});
    ASSERT_TRUE(fs::exists(image));
    EXPECT_TRUE(isJpeg(image));
}

TEST_P(StillOfRealMedia, MayLieInAFolderOfThatName) {
    const auto stills = folder_.makeFolder(GetParam().movie);
    const auto image = QRXFFmpegImageUtility().createImageFileForMovie(movie_, stills);
    EXPECT_EQ(image, stills + "/still.movmovieImage.jpg");
    EXPECT_EQ(filesBelow(folder_.path()), Strings{image});
    ASSERT_TRUE(fs::exists(image));
    EXPECT_TRUE(isJpeg(image));
}

constexpr NamedMovie kMovieNames[] = {
    {"Plain", "clip"},           {"FrameNumber", "50%d"}, {"PaddedFrameNumber", "50%03d"},
    {"LonePercent", "100%"},     {"TwoPercents", "%%"},   {"UnknownConversion", "%x"},
    {"TwoFrameNumbers", "%d%d"}, {"Blank", "a b"},        {"Accent", "caf\xC3\xA9"},
    {"NotUtf8", "caf\xE9"},      {"Shell", "it's $(x)"},  {"Option", "-i"},
    {"Protocol", "a:b"},
};

INSTANTIATE_TEST_SUITE_P(Names, StillOfRealMedia, testing::ValuesIn(kMovieNames),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(StillsOfRealMedia, OfOneMovieLieSideBySide) {
    const auto movie = FfmpegMedia::shared().file("still.mov", picture({"-c:v", "libx264"}));
    const test::TemporaryFolder folder;
    const QRXFFmpegImageUtility utility;
    const auto first = utility.createImageFileForMovie(movie, folder.path());
    const auto second = utility.createImageFileForMovie(movie, folder.path());
    EXPECT_NE(first, second);
    EXPECT_TRUE(isJpeg(first));
    EXPECT_TRUE(isJpeg(second));
}

TEST(StillsOfRealMedia, OfASoundOrAMissingFolderAreNotWritten) {
    const auto sound = FfmpegMedia::shared().file("sound.wav", tone({}));
    const test::TemporaryFolder folder;
    const QRXFFmpegImageUtility utility;
    EXPECT_EQ(utility.createImageFileForMovie(sound, folder.path()),
              folder / "sound.wavmovieImage.jpg");
    EXPECT_EQ(utility.createImageFileForMovie(sound, folder / "missing"),
              folder / "missing/sound.wavmovieImage.jpg");
    EXPECT_TRUE(filesBelow(folder.path()).empty());
}

}  // namespace
}  // namespace qrx
