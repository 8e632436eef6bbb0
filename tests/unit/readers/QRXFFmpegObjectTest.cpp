#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "foundation/Text.h"
#include "platform/ports/Services.h"
#include "readers/QRXFFmpegDefinitions.h"
#include "readers/QRXFFmpegObject.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

namespace fs = std::filesystem;

struct PathCase {
    const char* name;
    const char* path;
    bool invalid;
};

constexpr PathCase kPaths[] = {
    {"Thumbnail", "clip.THM", true},
    {"LowerCaseText", "notes.txt", true},
    {"MixedCase", "/a/Photo.JpEg", true},
    {"Movie", "clip.MOV", false},
    {"MxfClip", "/card/0001.MXF", false},
    {"KeptNoDotIsAskedFor", "/x/PRINT", true},
    {"KeptACheckpointEndsInInt", "/x/checkpoint", true},
    {"LongerThanTheExtension", "/x/a.xmlx", false},
    {"ExtensionAlone", "int", true},
    {"ShorterThanEveryExtension", "nt", false},
    {"Empty", "", false},
    {"AFolderWithATrailingSlash", "/x/a.txt/", false},
    {"ExtensionInTheMiddle", "/x.jpg/clip.mov", false},
    {"RawFootage", "/x/A001_001.R3D", true},
    {"LigatureThatUpperCasesToTwoLetters", "/x/a.ti\xEF\xAC\x80", true},  // U+FB00, "ff"
    {"DotlessIUpperCasesToI",
     "/x/a.a\xC4\xB1"
     "f",
     true},
    {"BytesThatAreNotUtf8", "/x/\xFF\xFE.txt", true},
    {"BytesThatAreNotUtf8AtTheEnd", "/x/a.tx\xFF", false},
};

class InvalidVideoExtension : public testing::TestWithParam<PathCase> {};

TEST_P(InvalidVideoExtension, IsTheEndOfTheUpperCasedPath) {
    const std::string path = GetParam().path;
    EXPECT_EQ(QRXFFmpegObject::filePathHasInvalidVideoFileExtension(path), GetParam().invalid);
    EXPECT_EQ(QRXFFmpegObject::upperCasedFilePathHasInvalidVideoFileExtension(upperCased(path)),
              GetParam().invalid);
}

INSTANTIATE_TEST_SUITE_P(Table, InvalidVideoExtension, testing::ValuesIn(kPaths),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(InvalidVideoExtensions, EveryEntryRejectsInBothCases) {
    for (const auto& extension : QRXFFmpegDefinitions::invalidVideoFileExtensions()) {
        SCOPED_TRACE(extension);
        EXPECT_TRUE(QRXFFmpegObject::filePathHasInvalidVideoFileExtension("/x/a." + extension));
        EXPECT_TRUE(
            QRXFFmpegObject::filePathHasInvalidVideoFileExtension("/x/A." + upperCased(extension)));
        EXPECT_FALSE(
            QRXFFmpegObject::filePathHasInvalidVideoFileExtension("/x/a." + extension + "_"));
    }
}

TEST(InvalidVideoExtensions, ALowerCasePathIsNotInUpperCase) {
    EXPECT_FALSE(QRXFFmpegObject::upperCasedFilePathHasInvalidVideoFileExtension("notes.txt"));
}

/// A PATH of its own for one test.
class ScopedSearchPath {
public:
    explicit ScopedSearchPath(const std::string& path) {
        if (const char* const before = std::getenv("PATH")) before_ = before;
        ::setenv("PATH", path.c_str(), 1);
    }
    ~ScopedSearchPath() { ::setenv("PATH", before_.c_str(), 1); }
    ScopedSearchPath(const ScopedSearchPath&) = delete;
    ScopedSearchPath& operator=(const ScopedSearchPath&) = delete;

private:
    std::string before_;
};

class FFmpegTool : public testing::Test {
protected:
    FFmpegTool() { services_->ffmpegPath.clear(); }

    std::string program(const std::string& name) const {
        std::string path = folder_.write(name, "#!/bin/sh\n");
        fs::permissions(path, fs::perms::owner_all);
        return path;
    }

    platform::ScopedServices services_;
    test::TemporaryFolder folder_;
};

// The look-up below would end at the default, were the tool installed there.
TEST_F(FFmpegTool, IsNotInstalledAtTheDefaultOnTestMachines) {
    ASSERT_FALSE(fs::exists(QRXFFmpegDefinitions::defaultFFmpegPath()));
}

TEST_F(FFmpegTool, IsAtTheDefaultAtFirst) {
    EXPECT_EQ(QRXFFmpegObject().ffmpegPath(), "/Vantrel/ffmpeg10-5/bin/ffmpeg");
}

TEST_F(FFmpegTool, ThatWasSetIsUsedAsItIs) {
    const ScopedSearchPath search(folder_.path());
    const auto onPath = program("ffmpeg");
    services_->ffmpegPath = onPath;
    QRXFFmpegObject object;
    object.setFfmpegPath("/not/there");
    EXPECT_EQ(object.ffmpegPath(), "/not/there");
    EXPECT_EQ(object.pathOfToolToRun(), "/not/there");
    object.setFfmpegPath("");
    EXPECT_EQ(object.pathOfToolToRun(), "");
    object.setFfmpegPath(QRXFFmpegDefinitions::defaultFFmpegPath());
    EXPECT_EQ(object.pathOfToolToRun(), QRXFFmpegDefinitions::defaultFFmpegPath());
}

TEST_F(FFmpegTool, OfTheHostIsUsedAlsoWhenNothingIsThere) {
    const ScopedSearchPath search(folder_.path());
    const auto onPath = program("ffmpeg");
    services_->ffmpegPath = "/not/there/either";
    const QRXFFmpegObject object;
    EXPECT_EQ(object.pathOfToolToRun(), "/not/there/either");
    EXPECT_EQ(object.ffmpegPath(), QRXFFmpegDefinitions::defaultFFmpegPath());
}

TEST_F(FFmpegTool, IsLookedUpAtEveryCall) {
    const ScopedSearchPath search(folder_.path());
    const QRXFFmpegObject object;
    EXPECT_EQ(object.pathOfToolToRun(), QRXFFmpegDefinitions::defaultFFmpegPath());
    const auto onPath = program("ffmpeg");
    EXPECT_EQ(object.pathOfToolToRun(), onPath);
}

TEST_F(FFmpegTool, OnThePathIsTheFirstProgram) {
    const auto folder = folder_.makeFolder("folder/ffmpeg");
    const auto file = folder_.write("file/ffmpeg");
    const auto first = program("first/ffmpeg");
    const auto second = program("second/ffmpeg");
    fs::permissions(file, fs::perms::owner_read);
    const ScopedSearchPath search((folder_ / "missing") + ":" + (folder_ / "folder") + ":" +
                                  (folder_ / "file") + ":" + (folder_ / "first") + ":" +
                                  (folder_ / "second"));
    EXPECT_EQ(QRXFFmpegObject().pathOfToolToRun(), first);
}

TEST_F(FFmpegTool, IsNeverTakenFromTheCurrentFolder) {
    const auto onCard = program("ffmpeg");
    const auto before = fs::current_path();
    fs::current_path(folder_.path());
    for (const char* const path : {"", ".", ":", "./", "../x:."}) {
        SCOPED_TRACE(path);
        const ScopedSearchPath search(path);
        EXPECT_EQ(QRXFFmpegObject().pathOfToolToRun(), QRXFFmpegDefinitions::defaultFFmpegPath());
    }
    fs::current_path(before);
}

}  // namespace
}  // namespace qrx
