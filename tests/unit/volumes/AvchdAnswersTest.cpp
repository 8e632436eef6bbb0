#include <string>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "volumes/QRXAVCHDUtility.h"
#include "volumes/QRXCanonAVCHDUtility.h"
#include "volumes/QRXPanasonicAVCHDUtility.h"
#include "volumes/QRXSonyAVCHDUtility.h"

namespace qrx {
namespace {

using Pieces = std::vector<std::string>;

/// A clip information file as cameras write it: a mark, a body, and the maker's block at the end
/// with the timecode `distance` bytes before the end.
std::string clipInformation(const std::string& timecodeBytes, std::size_t distance) {
    std::string file = "HDMV0100" + std::string(592, '\0') + std::string(distance, '\x11');
    return file.replace(file.size() - distance, timecodeBytes.size(), timecodeBytes);
}

TEST(AvchdIdentity, TellsWhereTheCardsStructureBegins) {
    EXPECT_EQ(QRXAVCHDUtility().rootOfUniquePathIdenifier(), "/PRIVATE/");
    EXPECT_EQ(QRXCanonAVCHDUtility().rootOfUniquePathIdenifier(), "/PRIVATE/AVCHD/");
    EXPECT_EQ(QRXSonyAVCHDUtility().rootOfUniquePathIdenifier(), "AVCHD");
    EXPECT_EQ(QRXPanasonicAVCHDUtility().rootOfUniquePathIdenifier(), "/PRIVATE/");
    EXPECT_EQ(QRXAVCHDUtility().pathComponentsIndicatingTheVolumeHasBegun(), Pieces{"/PRIVATE/"});
    EXPECT_EQ(QRXCanonAVCHDUtility().pathComponentsIndicatingTheVolumeHasBegun(),
              Pieces{"/PRIVATE/AVCHD/"});
    EXPECT_EQ(QRXSonyAVCHDUtility().pathComponentsIndicatingTheVolumeHasBegun(),
              Pieces{"/AVCHD/BDMV/"});
    EXPECT_EQ(QRXPanasonicAVCHDUtility().pathComponentsIndicatingTheVolumeHasBegun(),
              Pieces{"/PRIVATE/AVCHD/BDMV/"});
}

TEST(AvchdClipFile, IsTheFirstThatBearsTheClipsNameInTheSiblingFolder) {
    const test::CardTree card{"AVCHD/BDMV/STREAM/00001.MTS", "AVCHD/BDMV/CLIPINF/00002.CPI",
                              "AVCHD/BDMV/CLIPINF/00001.CPI", "AVCHD/BDMV/CLIPINF/100001.CPI"};
    const QRXAVCHDUtility utility;
    const FilePath clip = card / "AVCHD/BDMV/STREAM/00001.MTS";
    EXPECT_EQ(utility.clipFileForAVCHDVideoFile(clip), card / "AVCHD/BDMV/CLIPINF/00001.CPI");
    EXPECT_EQ(utility.metadataFilePathForVideoFile(clip), card / "AVCHD/BDMV/CLIPINF/00001.CPI");
    EXPECT_FALSE(utility.clipFileForAVCHDVideoFile(card / "AVCHD/BDMV/STREAM/00003.MTS"));
}

TEST(AvchdClipFile, NothingWithoutTheFolderOrBehindADanglingLink) {
    const test::CardTree bare{"AVCHD/BDMV/STREAM/00001.MTS"};
    EXPECT_FALSE(QRXAVCHDUtility().clipFileForAVCHDVideoFile(bare / "AVCHD/BDMV/STREAM/00001.MTS"));
    const test::CardTree linked{"AVCHD/BDMV/CLIPINF/"};
    static_cast<void>(linked.link("AVCHD/BDMV/CLIPINF/00001.CPI", "gone"));
    EXPECT_FALSE(
        QRXAVCHDUtility().clipFileForAVCHDVideoFile(linked / "AVCHD/BDMV/STREAM/00001.MTS"));
}

TEST(AvchdClipFile, FolderNamesAreReplacedInTheirOwnCase) {
    const test::CardTree card{"avchd/bdmv/clipinf/00001.CPI", "avchd/bdmv/stream/00001.MTS"};
    // The folder stays "stream", where the first file of that name is the clip itself.
    EXPECT_EQ(QRXAVCHDUtility().clipFileForAVCHDVideoFile(card / "avchd/bdmv/stream/00001.MTS"),
              card / "avchd/bdmv/stream/00001.MTS");
}

TEST(AvchdTimecode, SonyReadsItSixteenBytesBeforeTheEnd) {
    const test::CardTree card{"AVCHD/BDMV/STREAM/00001.MTS"};
    card.write("AVCHD/BDMV/CLIPINF/00001.CPI", clipInformation("\x41\x10\x20\x01", 16));
    const FilePath clip = card / "AVCHD/BDMV/STREAM/00001.MTS";
    EXPECT_EQ(QRXSonyAVCHDUtility().startTimecodeForVideoFile(clip), "01:20:10:01");
    EXPECT_EQ(QRXAVCHDUtility().startTimecodeForVideoFile(clip), "00:00:00:00");
    EXPECT_EQ(QRXCanonAVCHDUtility().startTimecodeForVideoFile(clip), "00:00:00:00");
}

TEST(AvchdTimecode, PanasonicReadsItEightBytesBeforeTheEnd) {
    const test::CardTree card{"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS"};
    card.write("PRIVATE/AVCHD/BDMV/CLIPINF/00001.CPI", clipInformation("\x15\x10\x20\x01", 8));
    EXPECT_EQ(QRXPanasonicAVCHDUtility().startTimecodeForVideoFile(
                  card / "PRIVATE/AVCHD/BDMV/STREAM/00001.MTS"),
              "01:20:10:15");
}

TEST(AvchdTimecode, IsTheDefaultWithoutAClipFileOrWithABrokenOne) {
    const test::CardTree card{"AVCHD/BDMV/STREAM/00001.MTS", "AVCHD/BDMV/STREAM/00002.MTS"};
    card.write("AVCHD/BDMV/CLIPINF/00002.CPI", "HDMV0");
    for (const char* name : {"AVCHD/BDMV/STREAM/00001.MTS", "AVCHD/BDMV/STREAM/00002.MTS"}) {
        EXPECT_EQ(QRXSonyAVCHDUtility().startTimecodeForVideoFile(card / name), "00:00:00:00");
        EXPECT_EQ(QRXPanasonicAVCHDUtility().startTimecodeForVideoFile(card / name), "00:00:00:00");
    }
    EXPECT_FALSE(QRXSonyAVCHDUtility().extractStartTimecodeFromCPIFile(
        card / "AVCHD/BDMV/CLIPINF/00002.CPI"));
    EXPECT_FALSE(QRXSonyAVCHDUtility().extractStartTimecodeFromCPIFile(card / "missing"));
}

TEST(AvchdTimecode, PanasonicIsTheDefaultWhereADigitIsMissing) {
    const test::CardTree card{"AVCHD/BDMV/STREAM/00001.MTS"};
    card.write("AVCHD/BDMV/CLIPINF/00001.CPI", clipInformation("\x0A\x10\x20\x01", 8));
    EXPECT_EQ(
        QRXPanasonicAVCHDUtility().startTimecodeForVideoFile(card / "AVCHD/BDMV/STREAM/00001.MTS"),
        "00:00:00:00");
}

TEST(AvchdTimecode, IsNeverDropFrame) {
    const test::CardTree card{"AVCHD/BDMV/STREAM/00001.MTS", "AVCHD/BDMV/CLIPINF/00001.CPI"};
    const FilePath clip = card / "AVCHD/BDMV/STREAM/00001.MTS";
    EXPECT_FALSE(QRXSonyAVCHDUtility().videoFileIsDropFrame(clip));
    EXPECT_FALSE(QRXPanasonicAVCHDUtility().videoFileIsDropFrame(clip));
}

TEST(AvchdOrder, IsByTheNumberInTheName) {
    const FilePaths files{"/x/00010.MTS", "/x/00002.MTS", "/y/00002.MTS", "/x/00001.MTS"};
    const FilePaths ordered{"/x/00001.MTS", "/x/00002.MTS", "/y/00002.MTS", "/x/00010.MTS"};
    EXPECT_EQ(QRXAVCHDUtility().orderVolumeVideoFiles(files), ordered);
    EXPECT_EQ(QRXSonyAVCHDUtility().orderVolumeVideoFiles(files), ordered);
}

TEST(AvchdFolder, HoldsClipsWhereAStreamFolderHoldsOne) {
    const test::CardTree card{"PRIVATE/AVCHD/BDMV/STREAM/00001.mts"};
    const test::CardTree empty{"PRIVATE/AVCHD/BDMV/STREAM/00001.CPI"};
    const test::CardTree other{"BDMV/STREAM/00001.MTS"};
    EXPECT_TRUE(QRXAVCHDUtility().pathContainsVideoFilesMatchingVolumeStructure(card.path()));
    EXPECT_TRUE(QRXSonyAVCHDUtility().pathContainsVideoFilesMatchingVolumeStructure(card.path()));
    EXPECT_FALSE(QRXAVCHDUtility().pathContainsVideoFilesMatchingVolumeStructure(empty.path()));
    EXPECT_FALSE(QRXAVCHDUtility().pathContainsVideoFilesMatchingVolumeStructure(other.path()));
    EXPECT_FALSE(QRXAVCHDUtility().pathContainsVideoFilesMatchingVolumeStructure("/no/where"));
}

TEST(AvchdTag, ValueIsWhatFollowsTheFirstMark) {
    const QRXAVCHDUtility utility;
    EXPECT_EQ(utility.avchdValueFromTag("<Rate value=\"25\">"), "25>");
    EXPECT_EQ(utility.avchdValueFromTag("VALUE=a value=b Value=c"), "a b c");
    EXPECT_EQ(utility.avchdValueFromTag("value="), "");
    EXPECT_FALSE(utility.avchdValueFromTag("<Rate>"));
    EXPECT_FALSE(utility.avchdValueFromTag(""));
    EXPECT_FALSE(utility.avchdValueFromTag("value=\"undefined\""));
    EXPECT_FALSE(utility.avchdValueFromTag("value=\"NotUnDefinedYet\""));
    EXPECT_EQ(utility.avchdValueFromTag("undefined value=1"), "1");
}

TEST(AvchdTag, PlaylistsHaveNoXmlFile) {
    const test::CardTree card{"AVCHD/BDMV/PLAYLIST/00000.MPL"};
    EXPECT_FALSE(
        QRXAVCHDUtility().avchdXmlFileFromPlaylistFile(card / "AVCHD/BDMV/PLAYLIST/00000.MPL"));
}

}  // namespace
}  // namespace qrx
