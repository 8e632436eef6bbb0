#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/TemporaryFolder.h"
#include "volumes/ClipInformation.h"

namespace qrx {
namespace {

TimecodeBytes bytes(unsigned frames, unsigned seconds, unsigned minutes, unsigned hours) {
    return {std::byte(frames), std::byte(seconds), std::byte(minutes), std::byte(hours)};
}

TEST(PanasonicTimecode, IsTheBytesInReverse) {
    EXPECT_EQ(panasonicTimecode(bytes(0x15, 0x10, 0x20, 0x01)), "01:20:10:15");
    EXPECT_EQ(panasonicTimecode(bytes(0, 0, 0, 0)), "00:00:00:00");
    EXPECT_EQ(panasonicTimecode(bytes(0x99, 0x99, 0x99, 0x99)), "99:99:99:99");
}

TEST(PanasonicTimecode, LettersAreLeftOutAndThenADigitIsMissing) {
    EXPECT_FALSE(panasonicTimecode(bytes(0x0A, 0x10, 0x20, 0x01)));
    EXPECT_FALSE(panasonicTimecode(bytes(0xFF, 0xFF, 0xFF, 0xFF)));
}

TEST(PanasonicTimecode, FlagsInTheFramesStay) {
    EXPECT_EQ(panasonicTimecode(bytes(0x45, 0x10, 0x20, 0x01)), "01:20:10:45");
}

TEST(SonyTimecode, IsTheBytesInReverse) {
    EXPECT_EQ(sonyTimecode(bytes(0x15, 0x10, 0x20, 0x01)), "01:20:10:15");
}

TEST(SonyTimecode, FlagsAreTakenOffTheFrames) {
    EXPECT_EQ(sonyTimecode(bytes(0x40, 0x10, 0x20, 0x01)), "01:20:10:00");
    EXPECT_EQ(sonyTimecode(bytes(0x41, 0x10, 0x20, 0x01)), "01:20:10:01");
    EXPECT_EQ(sonyTimecode(bytes(0x45, 0x10, 0x20, 0x01)), "01:20:10:05");
    EXPECT_EQ(sonyTimecode(bytes(0x69, 0x10, 0x20, 0x01)), "01:20:10:29");
}

TEST(SonyTimecode, KeptFramesFrom30To40AreNone) {
    EXPECT_EQ(sonyTimecode(bytes(0x29, 0x10, 0x20, 0x01)), "01:20:10:29");
    EXPECT_EQ(sonyTimecode(bytes(0x30, 0x10, 0x20, 0x01)), "01:20:10:00");
    EXPECT_EQ(sonyTimecode(bytes(0x35, 0x10, 0x20, 0x01)), "01:20:10:00");
    EXPECT_EQ(sonyTimecode(bytes(0x40, 0x10, 0x20, 0x01)), "01:20:10:00");
}

TEST(SonyTimecode, ALetterAnywhereGivesNothing) {
    EXPECT_FALSE(sonyTimecode(bytes(0x0A, 0x10, 0x20, 0x01)));
    EXPECT_FALSE(sonyTimecode(bytes(0x10, 0xA0, 0x20, 0x01)));
    EXPECT_FALSE(sonyTimecode(bytes(0x10, 0x10, 0x20, 0x0F)));
}

// Every value of the frames byte: two decimal digits give a timecode whose frames are the stated
// ones, anything else gives nothing.
TEST(SonyTimecode, EveryFramesByte) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        SCOPED_TRACE(byte);
        const unsigned high = byte >> 4U;
        const unsigned low = byte & 0xFU;
        const auto timecode = sonyTimecode(bytes(byte, 0, 0, 0));
        if (high > 9 || low > 9) {
            EXPECT_FALSE(timecode);
            continue;
        }
        const unsigned number = high * 10 + low;
        const unsigned frames = number < 30 ? number : number <= 40 ? 0 : number - 40;
        ASSERT_TRUE(timecode);
        EXPECT_EQ(timecode->size(), 11U);
        EXPECT_EQ(std::stoul(timecode->substr(9)), frames);
    }
}

TEST(FourBytesBeforeEnd, ReadsThemAtTheirDistance) {
    const test::TemporaryFolder folder;
    const FilePath file = folder.write("00001.CPI", std::string(584, 'x') + "abcdefghijklmnop");
    const auto expected = [](const char* text) {
        return TimecodeBytes{std::byte(text[0]), std::byte(text[1]), std::byte(text[2]),
                             std::byte(text[3])};
    };
    EXPECT_EQ(fourBytesBeforeEnd(file, kSonyTimecodeDistance), expected("abcd"));
    EXPECT_EQ(fourBytesBeforeEnd(file, kPanasonicTimecodeDistance), expected("ijkl"));
}

TEST(FourBytesBeforeEnd, NothingInAFileThatIsShorterThanTheDistance) {
    const test::TemporaryFolder folder;
    for (std::size_t size = 0; size <= 20; ++size) {
        SCOPED_TRACE(size);
        const FilePath file = folder.write("short.CPI", std::string(size, '1'));
        EXPECT_EQ(fourBytesBeforeEnd(file, kSonyTimecodeDistance).has_value(), size >= 16);
        EXPECT_EQ(fourBytesBeforeEnd(file, kPanasonicTimecodeDistance).has_value(), size >= 8);
    }
}

TEST(FourBytesBeforeEnd, FollowsALinkAndRefusesWhatIsNoRegularFile) {
    const test::TemporaryFolder folder;
    folder.write("real.CPI", "0123456789abcdef");
    EXPECT_TRUE(fourBytesBeforeEnd(folder.link("link.CPI", "real.CPI"), 16));
    EXPECT_FALSE(fourBytesBeforeEnd(folder.link("dangling.CPI", "nothing"), 16));
    EXPECT_FALSE(fourBytesBeforeEnd(folder.path(), 16));
    EXPECT_FALSE(fourBytesBeforeEnd(folder / "missing.CPI", 16));
    EXPECT_FALSE(fourBytesBeforeEnd("/dev/zero", 16));
    ASSERT_EQ(::mkfifo((folder / "fifo.CPI").c_str(), 0600), 0);
    EXPECT_FALSE(fourBytesBeforeEnd(folder / "fifo.CPI", 16));
}

}  // namespace
}  // namespace qrx
