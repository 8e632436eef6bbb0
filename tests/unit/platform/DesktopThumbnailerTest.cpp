#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/fake/FakeProcessRunner.h"
#include "platform/linux/DesktopThumbnailer.h"
#include "platform/linux/PixbufImageCodec.h"
#include "platform/linux/PosixProcessRunner.h"
#include "platform/ports/Services.h"
#include "support/FfmpegMedia.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

using namespace std::chrono_literals;

/// A folder of entries with stand-ins, a temporary folder that nobody else uses, and a clip.
class DesktopThumbnailerTest : public testing::Test {
protected:
    DesktopThumbnailerTest() {
        static_cast<void>(test::FfmpegMedia::shared());  // lives in the usual place
        if (const char* const usual = std::getenv("TMPDIR")) usual_ = usual;
        ::setenv("TMPDIR", scratch_.path().c_str(), 1);
        services_->processRunner = std::make_shared<PosixProcessRunner>();
        services_->imageCodec = std::make_shared<PixbufImageCodec>();
    }
    ~DesktopThumbnailerTest() override {
        if (usual_.empty()) {
            ::unsetenv("TMPDIR");
        } else {
            ::setenv("TMPDIR", usual_.c_str(), 1);
        }
        EXPECT_TRUE(std::filesystem::is_empty(scratch_.path())) << "something was left behind";
    }

    /// A thumbnailer with this shell script: $1 is the file, $2 the picture to write, $3 the size.
    void install(const std::string& script, const std::string& name = "stand-in",
                 const std::string& types = "video/quicktime;") {
        const std::string program = data_.write(name + ".sh", "#!/bin/sh\n" + script + "\n");
        ::chmod(program.c_str(), 0755);
        static_cast<void>(data_.write("thumbnailers/" + name + ".thumbnailer",
                                      "[Thumbnailer Entry]\nTryExec=" + program + "\nExec=" +
                                          program + " %i %o %s\nMimeType=" + types + "\n"));
    }

    [[nodiscard]] std::optional<Image> thumbnail(const std::string& path, std::uint32_t width = 250,
                                                 std::uint32_t height = 250,
                                                 std::chrono::nanoseconds timeLimit = 60s) const {
        DesktopThumbnailer thumbnailer({.timeLimit = timeLimit, .dataFolders = {{data_.path()}}});
        return thumbnailer.thumbnail(path, width, height);
    }

    static std::string picture(const std::string& size = "80x40") {
        return test::FfmpegMedia::shared().file(
            "picture" + size + ".png",
            {"-f", "lavfi", "-i", "testsrc=s=" + size, "-frames:v", "1"});
    }
    static std::string copying(const std::string& path) { return "cp '" + path + "' \"$2\""; }

    std::string usual_;
    ScopedServices services_;
    test::TemporaryFolder scratch_;
    test::TemporaryFolder data_;
    test::TemporaryFolder files_;
    std::string clip_ = files_.write("a clip's \"name\".mov", std::string(100, 'x'));
};

TEST_F(DesktopThumbnailerTest, ProgramOfTheTypeMakesThePicture) {
    install("printf '%s|%s' \"$1\" \"$3\" >'" + files_.path() + "/asked'\n" + copying(picture()));
    const auto image = thumbnail(clip_, 300, 200);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 80U);
    EXPECT_EQ(image->height, 40U);
    EXPECT_EQ(test::fileContents(files_ / "asked"), clip_ + "|300");
}

TEST_F(DesktopThumbnailerTest, PictureThatIsTooLargeIsFittedIn) {
    install(copying(picture()));
    const auto image = thumbnail(clip_, 20, 20);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 20U);
    EXPECT_EQ(image->height, 10U);
}

TEST_F(DesktopThumbnailerTest, NothingFitsIntoNothing) {
    install(copying(picture()));
    EXPECT_FALSE(thumbnail(clip_, 0, 250));
    EXPECT_FALSE(thumbnail(clip_, 250, 0));
}

TEST_F(DesktopThumbnailerTest, HugeMaximumIsHeldDown) {
    install("[ \"$3\" -le 8192 ] && " + copying(picture()));
    EXPECT_TRUE(thumbnail(clip_, 0xFFFFFFFF, 0xFFFFFFFF));
}

TEST_F(DesktopThumbnailerTest, NoneInstalledIsNoThumbnail) {
    EXPECT_FALSE(thumbnail(clip_));
    install(copying(picture()), "other", "video/mp4;");
    EXPECT_FALSE(thumbnail(clip_)) << "it is for another type";
}

TEST_F(DesktopThumbnailerTest, EntryWhoseProgramIsGoneIsPassedOver) {
    install(copying(picture()), "z");
    data_.write("thumbnailers/a.thumbnailer",
                "[Thumbnailer Entry]\nTryExec=/nowhere/tool\nExec=/bin/true\n"
                "MimeType=video/quicktime;\n");
    data_.write("thumbnailers/b.thumbnailer",
                "[Thumbnailer Entry]\nExec=/nowhere/tool %i %o\nMimeType=video/quicktime;\n");
    EXPECT_TRUE(thumbnail(clip_));
}

TEST_F(DesktopThumbnailerTest, ExactTypeComesBeforeItsKind) {
    install(copying(picture("8x4")), "a", "application/octet-stream;");
    install(copying(picture()), "z");
    const auto image = thumbnail(clip_);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 80U);
}

TEST_F(DesktopThumbnailerTest, NextIsTriedWhereOneFails) {
    install("exit 3", "a");
    install("echo garbage >\"$2\"", "b");
    install(copying(picture()), "c");
    EXPECT_TRUE(thumbnail(clip_));
}

// ---- programs that fail

TEST_F(DesktopThumbnailerTest, OneThatHangsIsEndedWithItsChildren) {
    install("sleep 600 & echo $! >'" + files_.path() + "/child'\n" + copying(picture()) + "\nwait");
    EXPECT_FALSE(thumbnail(clip_, 250, 250, 500ms));
    const int child = std::stoi(test::fileContents(files_ / "child"));
    ASSERT_GT(child, 0);
    for (int i = 0; i < 3000; ++i) {  // an orphan is reaped by others, some time later
        std::ifstream stat("/proc/" + std::to_string(child) + "/stat");
        std::string text;
        if (!std::getline(stat, text) || text.find(") Z") != std::string::npos) return;
        std::this_thread::sleep_for(10ms);
    }
    FAIL() << "the child still runs";
}

TEST_F(DesktopThumbnailerTest, TimeIsForAllOfThemTogether) {
    for (const char* const name : {"a", "b", "c", "d"}) {
        install(std::string("echo >>'") + files_.path() + "/runs'\nexec sleep 600", name);
    }
    EXPECT_FALSE(thumbnail(clip_, 250, 250, 200ms));
    EXPECT_EQ(test::fileContents(files_ / "runs"), "\n");
}

TEST_F(DesktopThumbnailerTest, OneThatCrashesGivesNothing) {
    install(copying(picture()) + "\nkill -SEGV $$");
    EXPECT_FALSE(thumbnail(clip_));
}

TEST_F(DesktopThumbnailerTest, OneThatFailsGivesNothing) {
    install(copying(picture()) + "\nexit 1");
    EXPECT_FALSE(thumbnail(clip_));
}

TEST_F(DesktopThumbnailerTest, OneThatWritesNothingGivesNothing) {
    install("exit 0");
    EXPECT_FALSE(thumbnail(clip_));
    install(": >\"$2\"");
    EXPECT_FALSE(thumbnail(clip_));
}

TEST_F(DesktopThumbnailerTest, OneThatWritesGarbageGivesNothing) {
    install("head -c 100000 /dev/urandom >\"$2\"");
    EXPECT_FALSE(thumbnail(clip_));
    install("head -c 300 '" + picture() + "' >\"$2\"");
    EXPECT_FALSE(thumbnail(clip_)) << "cut short";
}

TEST_F(DesktopThumbnailerTest, PictureOfMoreThan100MegapixelsGivesNothing) {
    // Python writes the header of 20,000 x 20,000 pixels and packed rows of zeros.
    install("exec '" QRX_PYTHON
            "' - \"$2\" <<'END'\n"
            "import struct, sys, zlib\n"
            "def chunk(kind, data):\n"
            "    return (struct.pack('>I', len(data)) + kind + data +\n"
            "            struct.pack('>I', zlib.crc32(kind + data)))\n"
            "packer = zlib.compressobj(1)\n"
            "rows = b''.join(packer.compress(bytes(60001)) for _ in range(200)) + packer.flush()\n"
            "open(sys.argv[1], 'wb').write(b'\\x89PNG\\r\\n\\x1a\\n' + chunk(b'IHDR',\n"
            "    struct.pack('>IIBBBBB', 20000, 20000, 8, 2, 0, 0, 0)) + chunk(b'IDAT', rows) +\n"
            "    chunk(b'IEND', b''))\n"
            "END");
    EXPECT_FALSE(thumbnail(clip_));
}

TEST_F(DesktopThumbnailerTest, FileWithoutEndIsNotRead) {
    install("truncate -s 1T \"$2\"");
    EXPECT_FALSE(thumbnail(clip_));
}

TEST_F(DesktopThumbnailerTest, LinkIsNotFollowed) {
    install("ln -s '" + picture() + "' \"$2\"");
    EXPECT_FALSE(thumbnail(clip_));
    EXPECT_TRUE(std::filesystem::exists(picture()));
}

TEST_F(DesktopThumbnailerTest, FifoFolderOrDeviceInPlaceOfThePictureIsNotOpened) {
    install("mkfifo \"$2\"");
    EXPECT_FALSE(thumbnail(clip_));
    install("mkdir -p \"$2/a/b\"; : >\"$2/a/b/c\"; chmod 500 \"$2/a/b\"");
    EXPECT_FALSE(thumbnail(clip_));
    install("ln -s /dev/zero \"$2\"");
    EXPECT_FALSE(thumbnail(clip_));
}

TEST_F(DesktopThumbnailerTest, WhatLiesBesideThePictureGoes) {
    install(copying(picture()) + "\n: >\"$2.lock\"; mkdir \"$2.d\"; ln -s / \"$2.d/root\"");
    EXPECT_TRUE(thumbnail(clip_));
}

TEST_F(DesktopThumbnailerTest, ChildLeftBehindIsEndedAndThePictureCounts) {
    install("sleep 600 & echo $! >'" + files_.path() + "/child'\n" + copying(picture()));
    EXPECT_TRUE(thumbnail(clip_));
    const int child = std::stoi(test::fileContents(files_ / "child"));
    for (int i = 0; i < 3000; ++i) {
        std::ifstream stat("/proc/" + std::to_string(child) + "/stat");
        std::string text;
        if (!std::getline(stat, text) || text.find(") Z") != std::string::npos) return;
        std::this_thread::sleep_for(10ms);
    }
    FAIL() << "the child still runs";
}

// ---- being cancelled

TEST_F(DesktopThumbnailerTest, EndsWithTheRequestItBelongsTo) {
    install(": >'" + files_.path() + "/started'\nexec sleep 600");
    std::stop_source request;
    std::jthread host([&] {
        while (!std::filesystem::exists(files_ / "started"))
            std::this_thread::sleep_for(5ms);
        request.request_stop();
    });
    const RunsUntil until(request.get_token());
    EXPECT_THROW(static_cast<void>(thumbnail(clip_)), RunCancelled);
}

TEST_F(DesktopThumbnailerTest, EndsWithEveryRun) {
    install(": >'" + files_.path() + "/started'\nexec sleep 600");
    std::jthread user([&] {
        while (!std::filesystem::exists(files_ / "started"))
            std::this_thread::sleep_for(5ms);
        processRunner().cancelAll();
    });
    EXPECT_THROW(static_cast<void>(thumbnail(clip_)), RunCancelled);
}

// ---- what is never handed over

TEST_F(DesktopThumbnailerTest, WhatIsNoRegularFileIsNeverHandedOver) {
    install(
        "echo \"$1\" >>'" + files_.path() + "/asked'\n" + copying(picture()), "all",
        "video/quicktime;inode/fifo;inode/directory;inode/chardevice;application/octet-stream;");
    const std::string fifo = files_ / "fifo.mov";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const std::string socket = files_ / "socket.mov";
    ASSERT_EQ(::mknod(socket.c_str(), S_IFSOCK | 0600, 0), 0);
    for (const std::string& path :
         {fifo, socket, std::string("/dev/zero"), files_.makeFolder("folder.mov"),
          files_ / "missing.mov", std::string(), std::string("a\0b", 3),
          files_.link("dangling.mov", "nowhere"), files_.link("device.mov", "/dev/zero"),
          files_.write("empty.mov")}) {
        EXPECT_FALSE(thumbnail(path)) << path;
    }
    EXPECT_FALSE(std::filesystem::exists(files_ / "asked"));
}

// ---- still pictures

TEST_F(DesktopThumbnailerTest, StillPictureIsReadRightHere) {
    const auto runner = std::make_shared<FakeProcessRunner>();
    services_->processRunner = runner;
    install(copying(picture()), "all", "image/png;");
    const auto image = thumbnail(picture("100x60"), 50, 50);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 50U);
    EXPECT_EQ(image->height, 30U);
    EXPECT_TRUE(runner->requests().empty());
}

TEST_F(DesktopThumbnailerTest, SmallStillPictureIsNotEnlarged) {
    const auto image = thumbnail(picture("8x4"));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 8U);
}

TEST_F(DesktopThumbnailerTest, DamagedStillPictureIsNoThumbnail) {
    const std::string whole = test::fileContents(picture());
    EXPECT_FALSE(thumbnail(files_.write("cut.png", whole.substr(0, whole.size() / 2))));
    EXPECT_FALSE(thumbnail(files_.write("none.png", "\x89PNG\r\n\x1A\n and nothing more")));
}

TEST_F(DesktopThumbnailerTest, DrawingIsLeftToAProgram) {
    install(copying(picture()), "drawings", "image/svg+xml;");
    const std::string drawing = files_.write(
        "a.svg", "<?xml version=\"1.0\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"/>\n");
    const auto image = thumbnail(drawing);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 80U);
}

// ---- the real thing

struct RealClip {
    const char* name;
    std::vector<std::string> encoding;
};

class RealThumbnail : public testing::TestWithParam<RealClip> {};

INSTANTIATE_TEST_SUITE_P(
    Table, RealThumbnail,
    testing::Values(RealClip{"a.mov", {"-c:v", "mpeg4"}}, RealClip{"a.mp4", {"-c:v", "mpeg4"}},
                    RealClip{"00000.MTS", {"-c:v", "mpeg2video", "-f", "mpegts"}},
                    RealClip{"0001AB.MXF", {"-c:v", "mpeg2video"}},
                    RealClip{"a.avi", {"-c:v", "mjpeg"}},
                    RealClip{"50%d %s.mov", {"-c:v", "mpeg4"}}),
    [](const auto& row) { return "Row" + std::to_string(row.index); });

TEST_P(RealThumbnail, IsMadeByTheInstalledProgram) {
    ASSERT_TRUE(std::filesystem::exists("/usr/bin/ffmpegthumbnailer"))
        << "the package ffmpegthumbnailer is missing";
    std::vector<std::string> arguments{"-f", "lavfi", "-i", "color=c=red:s=640x360:r=25",
                                       "-t", "1"};
    arguments.insert(arguments.end(), GetParam().encoding.begin(), GetParam().encoding.end());
    const std::string clip = test::FfmpegMedia::shared().file(GetParam().name, arguments);
    DesktopThumbnailer thumbnailer({.timeLimit = 120s, .dataFolders = {{"/usr/share"}}});
    const auto image = thumbnailer.thumbnail(clip, 250, 250);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 250U);
    EXPECT_NEAR(image->height, 141, 1);
    const std::size_t corner = 0;  // where an overlay would be
    EXPECT_GT(std::to_integer<int>(image->rgba[corner]), 200);
    EXPECT_LT(std::to_integer<int>(image->rgba[corner + 1]), 60);
}

}  // namespace
}  // namespace qrx::platform
