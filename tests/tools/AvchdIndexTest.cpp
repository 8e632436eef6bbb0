#include <string>

#include <fmt/core.h>
#include <gtest/gtest.h>

#include "qrx/cards/AvchdIndex.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXPanasonicAVCHDUtility.h"
#include "volumes/QRXSonyAVCHDUtility.h"

namespace qrx::tool {
namespace {

using test::CardTree;

constexpr TransportStream kStream{.packets = 320, .firstTime = 63'000, .lastTime = 108'045};
constexpr TimecodePlace kSony{.bytesBeforeEnd = 16, .frameFlags = 0x40};
constexpr TimecodePlace kPanasonic{.bytesBeforeEnd = 8, .frameFlags = 0};

std::string timecodeText(const StartTimecode& start) {
    return fmt::format("{:02}:{:02}:{:02}:{:02}", start.hours, start.minutes, start.seconds,
                       start.frames);
}

TEST(AvchdIndex, LibraryReadsTheTimecodeThatASonyCardGot) {
    const CardTree card{"AVCHD/BDMV/STREAM/00000.MTS"};
    for (unsigned frames = 0; frames < 30; ++frames) {
        const StartTimecode start{.hours = 13, .minutes = 52, .seconds = 46, .frames = frames};
        card.write("AVCHD/BDMV/CLIPINF/00000.CPI", clipInformationFile(kStream, start, kSony));
        EXPECT_EQ(
            QRXSonyAVCHDUtility().startTimecodeForVideoFile(card / "AVCHD/BDMV/STREAM/00000.MTS"),
            timecodeText(start));
    }
}

TEST(AvchdIndex, LibraryReadsTheTimecodeThatAPanasonicCardGot) {
    const CardTree card{"PRIVATE/AVCHD/BDMV/STREAM/00000.MTS"};
    for (unsigned frames = 0; frames < 30; ++frames) {
        const StartTimecode start{.hours = 1, .minutes = 20, .seconds = 10, .frames = frames};
        card.write("PRIVATE/AVCHD/BDMV/CLIPINF/00000.CPI",
                   clipInformationFile(kStream, start, kPanasonic));
        EXPECT_EQ(QRXPanasonicAVCHDUtility().startTimecodeForVideoFile(
                      card / "PRIVATE/AVCHD/BDMV/STREAM/00000.MTS"),
                  timecodeText(start));
    }
}

TEST(AvchdIndex, ClipInformationHasThePlausibleSize) {
    const std::size_t size = clipInformationFile(kStream, {}, kSony).size();
    EXPECT_GE(size, 600U);
    EXPECT_LE(size, 2500U);
}

TEST(AvchdIndex, ClipInformationTellsThePackets) {
    constexpr std::size_t kPacketCountAt = 40 + 4 + 12;
    const std::string file = clipInformationFile(kStream, {}, kSony);
    EXPECT_EQ(file.substr(kPacketCountAt, 4), (std::string{'\0', '\0', '\x01', '\x40'}));
}

TEST(AvchdIndex, PlaylistNamesEveryClipInOrder) {
    const std::string file = playlistFile({"00000", "00001", "00002"}, kStream);
    EXPECT_LT(file.find("00000M2TS"), file.find("00001M2TS"));
    EXPECT_LT(file.find("00001M2TS"), file.find("00002M2TS"));
    EXPECT_NE(file.find("00002M2TS"), std::string::npos);
}

}  // namespace
}  // namespace qrx::tool
