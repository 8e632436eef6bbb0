#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/FileQuestions.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/ports/Services.h"
#include "qrx/cards/CardMaker.h"
#include "readers/MxfClipQuestions.h"
#include "support/TemporaryFolder.h"
#include "timecode/QRXTimecodeUtility.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXREDOneUtility.h"

namespace qrx::tool {
namespace {

using Utility = QRXHDMediaVolumeUtilityObject;

const Utility& utilityFor(const FilePath& file) {
    return QRXHDMediaVolumeAggregate::sharedInstance().utilityForFileAtPath(file);
}

/// A card of one layout, made by the real ffmpeg.
class MadeCard {
public:
    MadeCard(std::string_view layout, unsigned clips) {
        NewCard card(folder_ / "card");
        cardMakerFor(layout)->make(card, MediaTool(), clips);
        card.keep();
    }

    [[nodiscard]] std::string path() const { return folder_ / "card"; }
    [[nodiscard]] std::string operator/(const std::string& name) const {
        return joinedPath(path(), name);
    }

private:
    test::TemporaryFolder folder_;
};

/// What the maker says of a clip, and the library has to answer.
struct ExpectedClip {
    std::string file;
    std::string start;
    std::string sidecar;
};

struct LayoutCase {
    std::string_view layout;
    std::string_view title;
    QRXVideoFrameRate rate;
    bool dropFrame;
    bool drive;  ///< whether the layout knows its drives
    std::vector<ExpectedClip> clips;
};

void PrintTo(const LayoutCase& row, std::ostream* out) {
    *out << row.layout;
}

class MadeCards : public testing::TestWithParam<LayoutCase> {};

TEST_P(MadeCards, AreAnsweredAsTheyWereMade) {
    const LayoutCase& row = GetParam();
    const MadeCard card(row.layout, static_cast<unsigned>(row.clips.size()));
    for (const ExpectedClip& clip : row.clips) {
        SCOPED_TRACE(clip.file);
        const std::string file = card / clip.file;
        ASSERT_TRUE(fileExists(file));
        const Utility& utility = utilityFor(file);
        EXPECT_EQ(utility.volumeTitle(), row.title);
        EXPECT_EQ(utility.framerateForVideoFile(file), row.rate);
        EXPECT_EQ(utility.startTimecodeForVideoFile(file), clip.start);
        EXPECT_EQ(utility.videoFileIsDropFrame(file), row.dropFrame);
        EXPECT_EQ(utility.metadataFilePathForVideoFile(file).value_or(""), card / clip.sidecar);
    }
}

TEST_P(MadeCards, AreKnownAsDrivesOnlyWhenMounted) {
    const LayoutCase& row = GetParam();
    const MadeCard card(row.layout, 1);
    const Utility& utility = utilityFor(card / row.clips.front().file);
    platform::ScopedServices services;
    const auto mounts = std::make_shared<platform::FakeMountTable>();
    services->mountTable = mounts;
    EXPECT_FALSE(utility.drivePathMatchesVolumeStructure(card.path()));
    mounts->mountCard(card.path());
    EXPECT_EQ(utility.drivePathMatchesVolumeStructure(card.path()), row.drive);
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, MadeCards,
    testing::Values(
        LayoutCase{"p2",
                   "Panasonic P2",
                   QRXVideoFrameRate29_97,
                   true,
                   true,
                   {{"CONTENTS/VIDEO/0001AB.MXF", "01:00:00:02", "CONTENTS/CLIP/0001AB.XML"},
                    {"CONTENTS/VIDEO/0002AB.MXF", "01:00:07:07", "CONTENTS/CLIP/0002AB.XML"}}},
        LayoutCase{"xdcam-hd",
                   "Sony XDCAM HD",
                   QRXVideoFrameRate25,
                   false,
                   false,
                   {{"Clip/C0001.MXF", "01:00:00:02", "Clip/C0001M01.XML"},
                    {"Clip/C0002.MXF", "01:00:07:07", "Clip/C0002M01.XML"}}},
        LayoutCase{"xdcam-ex",
                   "Sony XDCAM EX",
                   QRXVideoFrameRate29_97,
                   false,
                   true,
                   {{"BPAV/CLPR/632_0001_01/632_0001_01.MP4", "01:00:00:02",
                     "BPAV/CLPR/632_0001_01/632_0001_01M01.XML"},
                    {"BPAV/CLPR/632_0002_01/632_0002_01.MP4", "01:00:07:07",
                     "BPAV/CLPR/632_0002_01/632_0002_01M01.XML"}}},
        LayoutCase{"jvc-mp4",
                   "JVC-MP4",
                   QRXVideoFrameRate29_97,
                   false,
                   true,
                   {{"PRIVATE/JVC/BPAV/CLPR/ABCD0001_01/ABCD0001_01.MP4", "01:00:00:02",
                     "PRIVATE/JVC/BPAV/CLPR/ABCD0001_01/ABCD0001_01M01.XML"},
                    {"PRIVATE/JVC/BPAV/CLPR/ABCD0002_01/ABCD0002_01.MP4", "01:00:07:07",
                     "PRIVATE/JVC/BPAV/CLPR/ABCD0002_01/ABCD0002_01M01.XML"}}},
        LayoutCase{"canon-xf",
                   "Canon XF",
                   QRXVideoFrameRate25,
                   false,
                   false,
                   {{"CONTENTS/CLIPS001/AA0001/AA000101.MXF", "01:00:00:02",
                     "CONTENTS/CLIPS001/AA0001/AA000101.XML"},
                    {"CONTENTS/CLIPS001/AA0002/AA000201.MXF", "01:00:07:07",
                     "CONTENTS/CLIPS001/AA0002/AA000201.XML"}}},
        LayoutCase{"jvc-qt",
                   "JVC-QuickTime",
                   QRXVideoFrameRate29_97,
                   true,
                   true,
                   {{"PRIVATE/JVC/CQAV/CLIP/ABCD0001_01.MOV", "01:00:00;02",
                     "PRIVATE/JVC/CQAV/INFO/ABCD0001_01.XML"},
                    {"PRIVATE/JVC/CQAV/CLIP/ABCD0002_01.MOV", "01:00:07;07",
                     "PRIVATE/JVC/CQAV/INFO/ABCD0002_01.XML"}}}),
    [](const auto& row) { return replaceAll(std::string(row.param.layout), "-", "_"); });

TEST(P2Card, NamesItsSoundsAndItsUniqueIdentifier) {
    const MadeCard card("p2", 1);
    const std::string clip = card / "CONTENTS/VIDEO/0001AB.MXF";
    const Utility& p2 = utilityFor(clip);
    EXPECT_EQ(p2.audioFilesForVideoFile(clip), (FilePaths{card / "CONTENTS/AUDIO/0001AB00.MXF",
                                                          card / "CONTENTS/AUDIO/0001AB01.MXF"}));
    EXPECT_EQ(p2.uniqueIdentifierForVideoFile(clip),
              upperCased(mxfUniqueIdentifier(clip).value_or("none")));
    EXPECT_FALSE(p2.fileIsInASpannedSeries(clip));
    EXPECT_TRUE(mxfIsDropFrame(clip));
    EXPECT_EQ(test::fileContents(card / "LASTCLIP.TXT"), "0001AB\r\n1.0\r\n1\r\n");
}

/// Three pieces of one recording, out of order, beside one that is none.
void expectSpan(const FilePath& single, const FilePaths& pieces) {
    const Utility& utility = utilityFor(single);
    EXPECT_TRUE(utility.clipSpanningSupported());
    const FilePaths mixed{pieces[2], pieces[0], pieces[1]};
    EXPECT_TRUE(utility.filesArePartOfTheSameSpanSeries(mixed));
    EXPECT_EQ(utility.sortSpannedClipSeries(mixed), pieces);
    EXPECT_FALSE(utility.filesArePartOfTheSameSpanSeries(FilePaths{pieces[0], single}));
    EXPECT_EQ(utility.orderVolumeVideoFiles({pieces[2], pieces[0], single, pieces[1]}),
              (FilePaths{single, pieces[0], pieces[1], pieces[2]}));
    for (const FilePath& piece : pieces) {
        EXPECT_EQ(utility.spanPartnerIdentifierForPath(piece),
                  utility.spanPartnerIdentifierForPath(pieces[0]));
    }
}

TEST(SpannedCards, P2PiecesFollowTheirLinks) {
    const MadeCard card("p2", 4);
    const FilePaths pieces{card / "CONTENTS/VIDEO/0002AB.MXF", card / "CONTENTS/VIDEO/0003AB.MXF",
                           card / "CONTENTS/VIDEO/0004AB.MXF"};
    expectSpan(card / "CONTENTS/VIDEO/0001AB.MXF", pieces);
    EXPECT_TRUE(utilityFor(pieces[1]).fileIsInASpannedSeries(pieces[1]));
    EXPECT_EQ(utilityFor(pieces[2]).startTimecodeForVideoFile(pieces[2]), "01:00:09:07");
}

TEST(SpannedCards, ExSegmentsFollowTheirNumbers) {
    const MadeCard card("xdcam-ex", 4);
    const std::string store = card / "BPAV/CLPR/";
    expectSpan(store + "632_0001_01/632_0001_01.MP4",
               {store + "632_0002_01/632_0002_01.MP4", store + "632_0002_02/632_0002_02.MP4",
                store + "632_0002_03/632_0002_03.MP4"});
    const std::string last = store + "632_0002_03/632_0002_03.MP4";
    EXPECT_EQ(utilityFor(last).startTimecodeForVideoFile(last), "01:00:09:07");
    EXPECT_EQ(utilityFor(last).endTimecodeForVideoFile(last), "01:00:10:06");
    EXPECT_EQ(utilityFor(last).uniqueIdentifierForVideoFile(last).value_or("").size(), 64U);
}

TEST(SpannedCards, JvcPiecesFollowTheirNumbers) {
    const MadeCard movies("jvc-qt", 4);
    const std::string folder = movies / "PRIVATE/JVC/CQAV/CLIP/";
    expectSpan(folder + "ABCD0001_01.MOV", {folder + "ABCD0002_01.MOV", folder + "ABCD0002_02.MOV",
                                            folder + "ABCD0002_03.MOV"});
    const MadeCard card("jvc-mp4", 4);
    const std::string store = card / "PRIVATE/JVC/BPAV/CLPR/";
    expectSpan(store + "ABCD0001_01/ABCD0001_01.MP4",
               {store + "ABCD0002_01/ABCD0002_01.MP4", store + "ABCD0002_02/ABCD0002_02.MP4",
                store + "ABCD0002_03/ABCD0002_03.MP4"});
}

TEST(XdcamHdCard, SidecarAgreesWithTheFile) {
    const MadeCard card("xdcam-hd", 2);
    for (const char* name : {"C0001", "C0002"}) {
        const std::string clip = card / ("Clip/" + std::string(name) + ".MXF");
        const auto umid = utilityFor(clip).uniqueIdentifierForVideoFile(clip);
        ASSERT_TRUE(umid);
        EXPECT_EQ(umid->size(), 64U);
        const std::string sidecar =
            test::fileContents(card / ("Clip/" + std::string(name) + "M01.XML"));
        EXPECT_TRUE(contains(sidecar, "umidRef=\"" + upperCased(*umid) + "\""));
        EXPECT_TRUE(fileExists(card / ("Sub/" + std::string(name) + "S01.MXF")));
    }
}

// These answer rate and timecode as any movie does; the date of an EOS file is its timecode.

void expectDrive(const MadeCard& card, const Utility& utility) {
    platform::ScopedServices services;
    const auto mounts = std::make_shared<platform::FakeMountTable>();
    services->mountTable = mounts;
    EXPECT_FALSE(utility.drivePathMatchesVolumeStructure(card.path()));
    mounts->mountCard(card.path());
    EXPECT_TRUE(utility.drivePathMatchesVolumeStructure(card.path()));
}

TEST(CanonEosCard, IsAnsweredAsItWasMade) {
    const MadeCard card("canon-eos", 2);
    const std::string clip = card / "DCIM/100CANON/MVI_0002.MOV";
    const Utility& eos = utilityFor(clip);
    EXPECT_EQ(eos.volumeTitle(), "Canon EOS");
    EXPECT_EQ(eos.framerateForVideoFile(clip), QRXVideoFrameRate29_97);
    EXPECT_EQ(eos.metadataFilePathForVideoFile(clip), card / "DCIM/100CANON/MVI_0002.THM");
    expectDrive(card, eos);
}

TEST(GoProCard, IsAnsweredAsItWasMade) {
    const MadeCard card("gopro", 2);
    const std::string clip = card / "DCIM/100GOPRO/GOPR0002.MP4";
    const Utility& goPro = utilityFor(clip);
    EXPECT_EQ(goPro.volumeTitle(), "GoPro");
    EXPECT_EQ(goPro.framerateForVideoFile(clip), QRXVideoFrameRate29_97);
    EXPECT_TRUE(fileExists(card / "DCIM/100GOPRO/GOPR0002.LRV"));
    EXPECT_TRUE(fileExists(card / "DCIM/100GOPRO/GOPR0002.THM"));
    expectDrive(card, goPro);
}

TEST(RedOneCard, LeadsFromTheMovieToTheRawFile) {
    const MadeCard card("red-one", 2);
    const std::string stem = card / "A001.RDM/A001_C002_0503AB.RDC/A001_C002_0503AB_";
    const Utility& red = utilityFor(stem + "F.mov");
    EXPECT_EQ(red.volumeTitle(), "RED One");
    EXPECT_EQ(red.framerateForVideoFile(stem + "F.mov"), QRXVideoFrameRate29_97);
    EXPECT_EQ(QRXREDOneUtility().sourceFilePathForReferenceFile(stem + "F.mov"), stem + "001.R3D");
    EXPECT_EQ(red.volumePartnerIdentifierForFilePath(stem + "F.mov"), card.path());
    expectDrive(card, red);
}

}  // namespace
}  // namespace qrx::tool
