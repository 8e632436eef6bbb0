#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qrx/report/CardRoots.h"
#include "qrx/report/Companions.h"
#include "qrx/report/Durations.h"
#include "qrx/report/HtmlRows.h"
#include "qrx/report/HtmlText.h"
#include "qrx/report/LtcText.h"
#include "qrx/report/PictureSize.h"
#include "qrx/report/Unclaimed.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"

namespace qrx::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// ---- escaping

TEST(HtmlText, LeavesNothingThatOpensMarkup) {
    EXPECT_EQ(htmlText("<img src=x onerror=\"a('b')\">&amp;"),
              "&lt;img src=x onerror=&quot;a(&#39;b&#39;)&quot;&gt;&amp;amp;");
}

TEST(HtmlText, EveryByteLeavesPlainText) {
    for (int code = 0; code < 256; ++code) {
        const std::string shownText = htmlShown(std::string(1, static_cast<char>(code)));
        EXPECT_EQ(shownText.find_first_of("<>\"'\n\r\t\x1b"), std::string::npos) << code;
        EXPECT_FALSE(shownText.empty()) << code;
    }
    EXPECT_EQ(htmlShown("a\u202eb\nc\xff"), "a\\u{202e}b\\nc\\xff");
}

TEST(HtmlText, NumbersAsPeopleReadThem) {
    EXPECT_EQ(sizeForPeople(0), "0 B");
    EXPECT_EQ(sizeForPeople(999), "999 B");
    EXPECT_EQ(sizeForPeople(1000), "1.00 kB");
    EXPECT_EQ(sizeForPeople(999'999), "1.00 MB");
    EXPECT_EQ(sizeForPeople(64'000'000'000), "64.00 GB");
    EXPECT_EQ(sizeForPeople(UINT64_MAX), "18446.74 PB");
    EXPECT_EQ(durationForPeople(0.04), "0:00.0");
    EXPECT_EQ(durationForPeople(59.96), "1:00.0");
    EXPECT_EQ(durationForPeople(3599.96), "1:00:00");
    EXPECT_EQ(durationForPeople(360'000), "100:00:00");
    EXPECT_EQ(durationForPeople(-1), kNotKnown);
    EXPECT_EQ(countForPeople(999), "999");
    EXPECT_EQ(countForPeople(1'234'567), "1,234,567");
    EXPECT_EQ(counted(1, "clip", "clips"), "1 clip");
}

// ---- durations

TEST(Durations, RatesByTheirNames) {
    EXPECT_DOUBLE_EQ(*framesPerSecond("29.97p"), 30000.0 / 1001);
    EXPECT_DOUBLE_EQ(*framesPerSecond("59.94i"), 30000.0 / 1001);
    EXPECT_DOUBLE_EQ(*framesPerSecond("59.94p"), 60000.0 / 1001);
    EXPECT_DOUBLE_EQ(*framesPerSecond("23.98p"), 24000.0 / 1001);
    EXPECT_DOUBLE_EQ(*framesPerSecond("23.976"), 24000.0 / 1001);
    EXPECT_DOUBLE_EQ(*framesPerSecond("50i"), 25);
    EXPECT_DOUBLE_EQ(*framesPerSecond("25p"), 25);
    EXPECT_DOUBLE_EQ(*framesPerSecond("24"), 24);
    for (const char* const none : {"", "p", "0", "-25", "1e999"}) {
        EXPECT_FALSE(framesPerSecond(none)) << none;
    }
}

TEST(Durations, EditUnits) {
    EXPECT_DOUBLE_EQ(*secondsOfEditUnits("300", "1001/30000"), 10.01);
    EXPECT_DOUBLE_EQ(*secondsOfEditUnits("250", "1/25"), 10);
    EXPECT_FALSE(secondsOfEditUnits("0", "1/25"));
    EXPECT_FALSE(secondsOfEditUnits("-5", "1/25"));
    EXPECT_FALSE(secondsOfEditUnits("250", "25"));
    EXPECT_FALSE(secondsOfEditUnits("250", "1/0"));
}

TEST(Durations, ClockOfTheTool) {
    EXPECT_DOUBLE_EQ(*secondsOfClock("00:01:02.03"), 62.03);
    EXPECT_DOUBLE_EQ(*secondsOfClock(" 100:00:00.50 "), 360000.5);
    for (const char* const none : {"N/A", "", "00:00:00.00", "1:2", "1:2:3:4", "00:-1:00"}) {
        EXPECT_FALSE(secondsOfClock(none)) << none;
    }
}

TEST(Durations, BetweenTimecodes) {
    EXPECT_DOUBLE_EQ(*secondsBetween("01:00:00:00", "01:00:09:24", 25, false), 10);
    // Ten minutes of drop frame are 17982 frames.
    EXPECT_NEAR(*secondsBetween("00:00:00;00", "00:09:59;29", 30000.0 / 1001, true), 600, 0.001);
    EXPECT_NEAR(*secondsBetween("00:00:00:00", "00:09:59:29", 30000.0 / 1001, false), 600.6, 0.001);
    EXPECT_FALSE(secondsBetween("23:59:59:00", "00:00:01:00", 25, false));
    EXPECT_FALSE(secondsBetween("", "00:00:01:00", 25, false));
    EXPECT_FALSE(secondsBetween("00:00:00:00", "00:00:01:00", 0, false));
}

TEST(Ltc, FlagsAreNoDigits) {
    EXPECT_EQ(readLtc("04030201"), (LtcReading{"01:02:03:04", false}));
    EXPECT_EQ(readLtc("44030201"), (LtcReading{"01:02:03;04", true}));
    EXPECT_EQ(readLtc("E983D2C1"), (LtcReading{"01:52:03;29", true}));
    const std::string whole = "04030201";
    for (std::size_t cut = 0; cut < whole.size(); ++cut) {
        EXPECT_FALSE(readLtc(whole.substr(0, cut))) << cut;
    }
    for (const char* const none : {"0403020g", "0A030201", "04 30201", "040302011"}) {
        EXPECT_FALSE(readLtc(none)) << none;
    }
}

TEST(PictureSizeInReport, IsNoCodecTag) {
    EXPECT_EQ(pictureSizeIn("Stream #0:0: Video: h264 (Main) ([27][0][0][0] / 0x001B), "
                            "yuv420p(tv, bt709), 1920x1080 [SAR 1:1 DAR 16:9], 25 fps\n"),
              (PictureSize{1920, 1080}));
    EXPECT_EQ(pictureSizeIn("Video: mpeg4, yuv420p, 64x48, 400 kb/s"), (PictureSize{64, 48}));
    for (const char* const none : {"", "Video: none", "Audio: aac, 64x48", "Video: a, 0x1B",
                                   "Video: a, 1x", "Video: a,\n, 1x1", "Video: a, 99999999999x1"}) {
        EXPECT_FALSE(pictureSizeIn(none)) << none;
    }
}

// ---- cards

struct RootCase {
    const char* title;
    const char* clip;
    const char* root;
};

constexpr RootCase kRoots[] = {
    {"Panasonic P2", "/media/me/A/CONTENTS/VIDEO/0001AB.MXF", "/media/me/A"},
    {"Canon XF", "/media/me/A/CONTENTS/CLIPS001/AA0201/AA020101.MXF", "/media/me/A"},
    {"Canon XF", "/media/me/A/CONTENTS/CLIPS001/AA020101.MXF", "/media/me/A"},
    {"Sony XDCAM EX", "/m/BPAV/CLPR/1_2_3/1_2_3.MP4", "/m"},
    {"Sony XDCAM HD", "/m/Clip/C0001.MXF", "/m"},
    {"Canon AVCHD", "/m/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS", "/m"},
    {"Sony NXCAM AVCHD", "/m/AVCHD/BDMV/STREAM/00000.MTS", "/m"},
    {"Sony NXCAM AVCHD", "/m/AVCHD/AVCHD/BDMV/STREAM/00000.MTS", "/m"},
    {"Sony NXCAM AVCHD", "/m/private/avchd/bdmv/stream/00000.MTS", "/m"},
    {"Canon EOS", "/media/me/A/DCIM/100CANON/MVI_0001.MOV", "/media/me/A"},
    {"GoPro", "/media/me/A/DCIM/100GOPRO/GOPR0001.MP4", "/media/me/A"},
    {"JVC-MP4", "/m/PRIVATE/JVC/BPAV/CLPR/A_01/A_01.MP4", "/m"},
    {"JVC-QuickTime", "/m/PRIVATE/JVC/CQAV/CLIP/A.MOV", "/m"},
    {"RED One", "/m/A001.RDM/A001_C001.RDC/A001_C001_F.mov", "/m"},
    {"Canon EOS", "/DCIM/100CANON/MVI_0001.MOV", "/"},
};

TEST(CardRoots, AreAboveTheFoldersOfTheLayout) {
    for (const auto& [title, clip, root] : kRoots) {
        const auto* const utility =
            QRXHDMediaVolumeAggregate::sharedInstance().utilityWithTitle(title);
        ASSERT_NE(utility, nullptr) << title;
        EXPECT_EQ(cardRootOf(clip, *utility), root) << clip;
    }
}

TEST(CardRoots, NoneForLayoutsThatTakeClipsAnywhere) {
    for (const auto* const utility : QRXHDMediaVolumeAggregate::allDefinedHDUtilities()) {
        EXPECT_EQ(cardRootOf("/a/b.c", *utility), std::nullopt) << utility->volumeTitle();
        if (!isWithoutCard(*utility)) continue;
        EXPECT_EQ(cardRootOf("/m/CONTENTS/VIDEO/DCIM/PRIVATE/x.mov", *utility), std::nullopt);
    }
}

TEST(CompanionNames, AreTheClipsAndWithoutParts) {
    EXPECT_THAT(possibleClipNames("0001ab"), ElementsAre("0001AB"));
    EXPECT_THAT(possibleClipNames("0001AB03"), ElementsAre("0001AB03", "0001AB", "0001A"));
    EXPECT_THAT(possibleClipNames("C0001S01"), ElementsAre("C0001S01", "C0001S", "C0001"));
    EXPECT_THAT(possibleClipNames("01"), ElementsAre("01"));
    EXPECT_THAT(possibleClipNames(""), ElementsAre(""));
}

TEST(Unclaimed, ThousandsOfSidecarsTakeOneLine) {
    UnclaimedFiles files;
    for (int i = 0; i < 3000; ++i) {
        files.add("/c/" + std::to_string(i) + ".xml", {.reason = "not video by its name"});
    }
    files.add("/c/a.bin", {.reason = "ffmpeg reports no duration", .mayBeFootage = true});
    const auto groups = files.groups();
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].kind, "BIN");
    EXPECT_EQ(groups[1].files, 3000U);
    EXPECT_THAT(groups[1].examples, ElementsAre("/c/0.xml", "/c/1.xml", "/c/2.xml"));
}

TEST(Unclaimed, KindsWithoutEndAreBounded) {
    UnclaimedFiles files;
    for (int i = 0; i < 5000; ++i) {
        files.add("/c/a.x" + std::to_string(i), {.reason = "ffmpeg reports no duration"});
    }
    EXPECT_LE(files.groups().size(), 42U);
    std::size_t count = 0;
    for (const auto& group : files.groups()) {
        count += group.files;
    }
    EXPECT_EQ(count, 5000U);
}

// ---- rows

ReportClip clipNamed(const std::string& file) {
    return {.file = file, .position = 1};
}

TEST(Rows, WhatIsNotKnownIsADash) {
    ReportRecording recording;
    recording.pieces.push_back({.clip = clipNamed("/c/a.mov")});
    const std::string rows = recordingRows(recording, false);
    std::size_t dashes = 0;
    for (auto at = rows.find(">–<"); at != std::string::npos; at = rows.find(">–<", at + 1)) {
        ++dashes;
    }
    EXPECT_EQ(dashes, 8U) << rows;  // all but number and name
    EXPECT_THAT(rows, Not(HasSubstr("series")));
}

TEST(Rows, NamesStayText) {
    ReportRecording recording{.spanKey = "<b>\"k\"</b>"};
    recording.pieces.push_back({.clip = clipNamed("/c/</script><img src=x onerror=y>.MOV")});
    recording.pieces[0].clip->uniqueIdentifier = "<i>";
    recording.pieces[0].clip->codec = "<u>";
    recording.pieces.push_back({.missingName = "<s>", .missingCount = 1});
    recording.otherCards.push_back("/<p>");
    const std::string rows = recordingRows(recording, true);
    for (const char* const markup :
         {"<b>", "</script>", "<img src=x", "<i>", "<u>", "<s>", "<p>"}) {
        EXPECT_THAT(rows, Not(HasSubstr(markup)));
    }
    EXPECT_THAT(rows, HasSubstr("&lt;/script&gt;&lt;img src=x onerror=y&gt;.MOV"));
}

}  // namespace
}  // namespace qrx::tool
