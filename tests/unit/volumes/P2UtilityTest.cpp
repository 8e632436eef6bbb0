#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/FileQuestions.h"
#include "platform/fake/FakeImageCodec.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "support/ReportingTool.h"
#include "support/TemporaryFolder.h"
#include "unit/readers/MxfTestSupport.h"
#include "unit/volumes/P2TestSupport.h"
#include "volumes/P2Rate.h"
#include "volumes/QRXPanasonicP2Utility.h"

namespace qrx {
namespace {

using test::P2ClipXml;

const QRXPanasonicP2Utility& p2() {
    return QRXPanasonicP2Utility::sharedInstance();
}

// ---- paths

struct PathCase {
    const char* name;
    const char* path;
    bool claimed;
};

constexpr PathCase kPaths[] = {
    {"ClipOnACard", "/Volumes/X/CONTENTS/VIDEO/0001AB.MXF", true},
    {"LowerCaseExtension", "/Volumes/X/CONTENTS/VIDEO/0001AB.mxf", true},
    {"LowerCaseName", "/Volumes/X/CONTENTS/VIDEO/0001ab.MXF", true},
    {"LowerCaseFolder", "/Volumes/X/contents/video/0001AB.MXF", false},
    {"InSubfolder", "/Volumes/X/CONTENTS/VIDEO/A/0001AB.MXF", false},
    {"InSubfolderOfItsOwnName", "/X/CONTENTS/VIDEO/0001AB.MXF/0001AB.MXF", true},
    {"Audio", "/Volumes/X/CONTENTS/AUDIO/0001AB00.MXF", false},
    {"ClipXml", "/Volumes/X/CONTENTS/CLIP/0001AB.XML", false},
    {"XmlInTheVideoFolder", "/Volumes/X/CONTENTS/VIDEO/0001AB.XML", false},
    {"RelativePath", "CONTENTS/VIDEO/0001AB.MXF", false},
    {"Loose", "/Volumes/X/0001AB.MXF", false},
    {"EmptyPath", "", false},
};

class P2Path : public testing::TestWithParam<PathCase> {};

TEST_P(P2Path, IsClaimedByPathAlone) {
    EXPECT_EQ(p2().filePathMatchesVolumeStructure(GetParam().path), GetParam().claimed);
}

INSTANTIATE_TEST_SUITE_P(Table, P2Path, testing::ValuesIn(kPaths),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(P2Utility, TellsWhereTheCardsStructureBegins) {
    EXPECT_EQ(p2().rootOfUniquePathIdenifier(), "CONTENTS");
    EXPECT_EQ(p2().pathComponentsIndicatingTheVolumeHasBegun(),
              std::vector<std::string>{"/CONTENTS/"});
    EXPECT_TRUE(p2().clipSpanningSupported());
}

TEST(P2Utility, AudioLiesDirectlyInTheAudioFolder) {
    EXPECT_TRUE(p2().fileIsP2Audio("/X/CONTENTS/AUDIO/0001AB00.MXF"));
    EXPECT_TRUE(p2().fileIsP2Audio("/X/CONTENTS/AUDIO/0001AB00.mxf"));
    EXPECT_FALSE(p2().fileIsP2Audio("/X/CONTENTS/AUDIO/A/0001AB00.MXF"));
    EXPECT_FALSE(p2().fileIsP2Audio("/X/CONTENTS/AUDIO/0001AB00.WAV"));
    EXPECT_FALSE(p2().fileIsP2Audio("/X/CONTENTS/VIDEO/0001AB.MXF"));
}

TEST(P2Utility, FolderHoldsClipsWhereAVideoFolderHoldsOne) {
    const test::CardTree card{"CONTENTS/VIDEO/0001AB.mxf"};
    const test::CardTree empty{"CONTENTS/VIDEO/", "CONTENTS/AUDIO/0001AB00.MXF"};
    EXPECT_TRUE(p2().pathContainsVideoFilesMatchingVolumeStructure(card.path()));
    EXPECT_FALSE(p2().pathContainsVideoFilesMatchingVolumeStructure(empty.path()));
}

// ---- the clip XML

class P2Clip : public testing::Test {
protected:
    void writeXml(const P2ClipXml& xml, const std::string& name = "0001AB") const {
        card_.write("CONTENTS/CLIP/" + name + ".XML", xml.text());
    }

    test::TemporaryFolder card_;
    FilePath clip_ = card_ / "CONTENTS/VIDEO/0001AB.MXF";
};

TEST_F(P2Clip, SidecarIsTheClipXml) {
    EXPECT_FALSE(p2().metadataFilePathForVideoFile(clip_));
    writeXml({});
    EXPECT_EQ(p2().metadataFilePathForVideoFile(clip_), card_ / "CONTENTS/CLIP/0001AB.XML");
    EXPECT_FALSE(p2().metadataFilePathForVideoFile(""));
}

TEST_F(P2Clip, SidecarsExtensionIsInCapitals) {
    card_.write("CONTENTS/CLIP/0001AB.xml", P2ClipXml{}.text());
    EXPECT_FALSE(p2().metadataFilePathForVideoFile(clip_));
}

TEST_F(P2Clip, IdentifierIsTheGlobalClipId) {
    EXPECT_EQ(p2().uniqueIdentifierForVideoFile(clip_), "0001AB");
    writeXml({});
    EXPECT_EQ(p2().uniqueIdentifierForVideoFile(clip_), "060A2B340101010501010D4313000000");
    card_.write("CONTENTS/CLIP/0001AB.XML", "<P2Main><ClipContent/></P2Main>");
    EXPECT_FALSE(p2().uniqueIdentifierForVideoFile(clip_));
}

TEST_F(P2Clip, UserClipNameIsTheUsersElseTheClips) {
    EXPECT_EQ(p2().userClipNameForVideoFile(clip_), "0001AB");
    writeXml({});
    EXPECT_EQ(p2().userClipNameForVideoFile(clip_), "Interview");
    writeXml({.userClipName = ""});
    EXPECT_EQ(p2().userClipNameForVideoFile(clip_), "");
    card_.write("CONTENTS/CLIP/0001AB.XML", "<P2Main><ClipContent/></P2Main>");
    EXPECT_EQ(p2().userClipNameForVideoFile(clip_), "0001AB");
}

TEST_F(P2Clip, StartTimecodeIsTheXmlsElseTheMxfs) {
    using namespace test;
    card_.write("CONTENTS/VIDEO/0001AB.MXF",
                asText(joined({startItem(90000), baseItem(30), dropFrameItem(1)})));
    EXPECT_EQ(p2().startTimecodeForVideoFile(clip_), "00:50:03;13");
    writeXml({});
    EXPECT_EQ(p2().startTimecodeForVideoFile(clip_), "01:00:00:00");
}

TEST_F(P2Clip, DropFrameIsTheXmlsElseTheMxfs) {
    card_.write("CONTENTS/VIDEO/0001AB.MXF", test::asText(test::dropFrameItem(1)));
    EXPECT_TRUE(p2().videoFileIsDropFrame(clip_));
    writeXml({});
    EXPECT_TRUE(p2().videoFileIsDropFrame(clip_));
    writeXml({.frameRate = "<FrameRate>25p</FrameRate>"});
    EXPECT_FALSE(p2().videoFileIsDropFrame(clip_));
    writeXml({.frameRate = "<FrameRate DropFrameFlag=\"false\">29.97p</FrameRate>"});
    EXPECT_FALSE(p2().videoFileIsDropFrame(clip_));
}

TEST_F(P2Clip, KeptXmlWithoutFrameRateCountsAsDropFrame) {
    writeXml({.frameRate = ""});
    EXPECT_TRUE(p2().videoFileIsDropFrame(clip_));
    card_.write("CONTENTS/CLIP/0001AB.XML", "no XML at all");
    EXPECT_TRUE(p2().videoFileIsDropFrame(clip_));
}

TEST_F(P2Clip, FrameRateIsTheXmlsElseTheMxfs) {
    card_.write("CONTENTS/VIDEO/0001AB.MXF", test::asText(test::baseItem(25)));
    EXPECT_EQ(p2().framerateForVideoFile(clip_), QRXVideoFrameRate25);
    writeXml({});
    EXPECT_EQ(p2().framerateForVideoFile(clip_), QRXVideoFrameRate29_97);
    writeXml({.editUnit = ""});
    EXPECT_EQ(p2().framerateForVideoFile(clip_), QRXVideoFrameRate29_97);
    writeXml({.editUnit = "", .frameRate = ""});
    EXPECT_EQ(p2().framerateForVideoFile(clip_), QRXVideoFrameRateUndefined);
}

TEST(P2Rate, IsTheInverseOfTheEditUnit) {
    EXPECT_EQ(p2FrameRate("1001/30000", std::nullopt), QRXVideoFrameRate29_97);
    EXPECT_EQ(p2FrameRate("1/25", std::nullopt), QRXVideoFrameRate25);
    EXPECT_EQ(p2FrameRate("1001/24000", std::nullopt), QRXVideoFrameRate23_976);
    EXPECT_EQ(p2FrameRate("1001/60000", std::nullopt), QRXVideoFrameRate59_94i);
    EXPECT_EQ(p2FrameRate("1/50", std::nullopt), QRXVideoFrameRate50p);
}

TEST(P2Rate, IsUndefinedForABrokenEditUnit) {
    for (const char* unit : {"", "25", "/", "0/25", "1/0", "1/", "/25", "a/b", "1/7"}) {
        EXPECT_EQ(p2FrameRate(unit, "25"), QRXVideoFrameRateUndefined) << unit;
    }
}

TEST(P2Rate, IsTheNumberInTheFrameRateWithoutAnEditUnit) {
    EXPECT_EQ(p2FrameRate(std::nullopt, " DropFrameFlag=\"true\">59.94i>"),
              QRXVideoFrameRate59_94i);
    EXPECT_EQ(p2FrameRate(std::nullopt, ">25p>"), QRXVideoFrameRate25);
    EXPECT_EQ(p2FrameRate(std::nullopt, ""), QRXVideoFrameRateUndefined);
    EXPECT_EQ(p2FrameRate(std::nullopt, std::nullopt), QRXVideoFrameRateUndefined);
}

// ---- sound and picture

TEST_F(P2Clip, AudioFilesStandInTheOrderOfTheChannels) {
    EXPECT_FALSE(p2().audioFilesForVideoFile(clip_));  // absent, not empty
    for (const char* name : {"0001AB03", "0001AB00", "0001AB01", "0001AB04", "0002AB02"}) {
        card_.write(std::string("CONTENTS/AUDIO/") + name + ".MXF");
    }
    EXPECT_EQ(
        p2().audioFilesForVideoFile(clip_),
        (FilePaths{card_ / "CONTENTS/AUDIO/0001AB00.MXF", card_ / "CONTENTS/AUDIO/0001AB01.MXF",
                   card_ / "CONTENTS/AUDIO/0001AB03.MXF"}));
    EXPECT_EQ(p2().audioFileForMovie(clip_, "01"), card_ / "CONTENTS/AUDIO/0001AB01.MXF");
    EXPECT_FALSE(p2().audioFileForMovie(clip_, "02"));
    EXPECT_FALSE(p2().audioFileForMovie(clip_, ""));
}

TEST_F(P2Clip, PosterIsTheFirstIconThatIsThere) {
    const auto codec = std::make_shared<platform::FakeImageCodec>();
    platform::ScopedServices services;
    services->imageCodec = codec;
    const auto addIcon = [&](const char* extension, std::uint32_t width) {
        const FilePath icon = card_.write(std::string("CONTENTS/ICON/0001AB") + extension);
        codec->pictures[icon] =
            platform::Image{width, 1, std::vector<std::byte>(width * std::size_t{4})};
    };
    addIcon(".BMP", 80);
    EXPECT_EQ(p2().posterImageForFilePath(clip_, card_.path()).width, 80U);
    addIcon(".jpeg", 81);
    EXPECT_EQ(p2().posterImageForFilePath(clip_, card_.path()).width, 81U);
    addIcon(".jpg", 82);
    EXPECT_EQ(p2().posterImageForFilePath(clip_, card_.path()).width, 82U);
}

TEST_F(P2Clip, PosterIsEmptyForAnIconThatIsNoPicture) {
    const test::ReportingTool tool("");
    card_.write("CONTENTS/ICON/0001AB.BMP", "no picture");
    EXPECT_TRUE(p2().posterImageForFilePath(clip_, card_.path()).isEmpty());
    EXPECT_EQ(tool.runs(), 0U);
}

TEST_F(P2Clip, PosterIsTheStillWithoutAnIcon) {
    const test::ReportingTool tool("");
    EXPECT_TRUE(p2().posterImageForFilePath(clip_, card_.path()).isEmpty());
    EXPECT_EQ(tool.runs(), 1U);
}

TEST_F(P2Clip, PosterOfAClipOutsideTheVideoFolderSaysSo) {
    const auto log = std::make_shared<platform::RecordingSystemLog>();
    const test::ReportingTool tool("");
    platform::ScopedServices services;
    services->systemLog = log;
    const FilePath odd = card_ / "CONTENTS/VIDEO/A.MXF/A.MXF";
    ASSERT_TRUE(p2().filePathMatchesVolumeStructure(odd));
    static_cast<void>(p2().posterImageForFilePath(odd, card_.path()));
    const auto notices = log->notices();
    EXPECT_EQ(std::count(notices.begin(), notices.end(), "No Suffix"), 1);
}

// ---- order

TEST(P2Order, IsByTheNumberInTheFirstFourCharacters) {
    const FilePaths files{"/x/0010AA.MXF", "/x/0002BB.MXF", "/x/0002AA.MXF", "/x/00A1.MXF"};
    EXPECT_EQ(p2().orderVolumeVideoFiles(files),
              (FilePaths{"/x/00A1.MXF", "/x/0002BB.MXF", "/x/0002AA.MXF", "/x/0010AA.MXF"}));
}

TEST(P2Order, IsByCreationDateWhereANameIsTooShort) {
    const test::TemporaryFolder folder;
    const FilePaths files{folder.write("0002.MXF"), folder.write("1"), folder.write("0001.MXF")};
    EXPECT_EQ(p2().orderVolumeVideoFiles(files),
              QRXHDMediaVolumeUtilityObject::sharedInstance().orderVolumeVideoFiles(files));
}

// ---- spanned recordings

class P2Span : public testing::Test {
protected:
    /// A piece of one shot; gives the path of its clip.
    FilePath piece(const std::string& name, const std::string& previous, const std::string& next,
                   P2ClipXml xml = {}) const {
        xml.clipName = name;
        xml.previous = previous;
        xml.next = next;
        if (xml.globalShotId.empty()) xml.globalShotId = "SHOT1";
        card_.write("CONTENTS/CLIP/" + name + ".XML", xml.text());
        return card_ / ("CONTENTS/VIDEO/" + name + ".MXF");
    }

    test::TemporaryFolder card_;
};

TEST_F(P2Span, PiecesOfOneShotBelongTogether) {
    const FilePath one = piece("0001AA", "", "0002AA");
    const FilePath two = piece("0002AA", "0001AA", "");
    P2ClipXml otherShot;
    otherShot.globalShotId = "SHOT2";
    const FilePath other = piece("0003AA", "", "", otherShot);
    EXPECT_EQ(p2().spanPartnerIdentifierForPath(one), "SHOT1");
    EXPECT_TRUE(p2().filesArePartOfTheSameSpanSeries({one, two}));
    EXPECT_FALSE(p2().filesArePartOfTheSameSpanSeries({one}));
    EXPECT_FALSE(p2().filesArePartOfTheSameSpanSeries({one, two, other}));
    EXPECT_TRUE(p2().filesArePartOfTheSameSpanSeries(one, two));
    EXPECT_FALSE(p2().filesArePartOfTheSameSpanSeries(one, other));
    EXPECT_TRUE(p2().fileIsInASpannedSeries(one));
}

TEST_F(P2Span, ClipsWithoutShotOrXmlBelongToNothing) {
    card_.write("CONTENTS/CLIP/0001AA.XML", P2ClipXml{}.text());
    const FilePath single = card_ / "CONTENTS/VIDEO/0001AA.MXF";
    const FilePath bare = card_ / "CONTENTS/VIDEO/0002AA.MXF";
    EXPECT_FALSE(p2().fileIsInASpannedSeries(single));
    EXPECT_FALSE(p2().fileIsInASpannedSeries(bare));
    EXPECT_FALSE(p2().spanPartnerIdentifierForPath(single));
    EXPECT_FALSE(p2().filesArePartOfTheSameSpanSeries({single, single}));
    EXPECT_FALSE(p2().filesArePartOfTheSameSpanSeries({bare, bare}));
}

TEST_F(P2Span, TwoClipsMustLieInTheLayoutToo) {
    const FilePath one = piece("0001AA", "", "0002AA");
    const FilePath sound = card_ / "CONTENTS/VIDEO/0001AA.WAV";
    EXPECT_TRUE(p2().spanPartnerIdentifierForPath(sound));
    EXPECT_FALSE(p2().filesArePartOfTheSameSpanSeries(one, sound));
}

TEST_F(P2Span, ChainGivesThePlayingOrder) {
    const FilePath a = piece("0001AA", "", "0002AA");
    const FilePath b = piece("0002AA", "0001AA", "0003AA");
    const FilePath c = piece("0003AA", "0002AA", "0004AA");
    const FilePath d = piece("0004AA", "0003AA", "");
    const FilePaths inOrder{a, b, c, d};
    FilePaths files = inOrder;
    std::sort(files.begin(), files.end());
    do {
        EXPECT_EQ(p2().sortSpannedClipSeries(files), inOrder);
    } while (std::next_permutation(files.begin(), files.end()));
    EXPECT_EQ(p2().sortSpannedClipSeries({d, a}), (FilePaths{a, d}));
}

TEST_F(P2Span, BrokenChainLeavesTheInputAsItIs) {
    const FilePath a = piece("0001AA", "", "0002AA");
    const FilePath c = piece("0003AA", "0002AA", "0004AA");
    const FilePath d = piece("0004AA", "0003AA", "");
    const std::vector<FilePaths> broken{
        {d, c, a},                                    // 0002AA is missing
        {c, d},                                       // no first piece
        {c, a},                                       // no last piece
        {a},                                          //
        {d, a, card_ / "CONTENTS/VIDEO/0009AA.MXF"},  // no clip XML
        {},                                           //
    };
    for (const FilePaths& files : broken) {
        EXPECT_EQ(p2().sortSpannedClipSeries(files), files);
    }
}

TEST_F(P2Span, LoopIsABrokenChain) {
    const FilePath a = piece("0001AA", "", "0002AA");
    const FilePath b = piece("0002AA", "0003AA", "0003AA");
    const FilePath c = piece("0003AA", "0002AA", "0002AA");
    const FilePath d = piece("0004AA", "0003AA", "");
    const FilePaths files{d, c, b, a};
    EXPECT_EQ(p2().sortSpannedClipSeries(files), files);
}

TEST_F(P2Span, PieceWithoutTopLeavesTheInputAsItIs) {
    const FilePath a = piece("0001AA", "", "0002AA");
    const FilePath d = piece("0004AA", "0003AA", "");
    P2ClipXml topless;
    topless.hasTop = false;
    const FilePath b = piece("0002AA", "0001AA", "0003AA", topless);
    const FilePaths files{d, b, a};
    EXPECT_EQ(p2().sortSpannedClipSeries(files), files);
}

TEST_F(P2Span, LaterFirstAndLastPieceReplaceTheEarlier) {
    const FilePath a = piece("0001AA", "", "0002AA");
    const FilePath otherFirst = piece("0005AA", "", "0002AA");
    const FilePath d = piece("0004AA", "0001AA", "");
    EXPECT_EQ(p2().sortSpannedClipSeries({d, otherFirst, a}), (FilePaths{a, d}));
    EXPECT_EQ(p2().sortSpannedClipSeries({d, a, otherFirst}), (FilePaths{otherFirst, d}));
}

TEST_F(P2Span, FirstPieceWithoutANameLeavesTheInputAsItIs) {
    P2ClipXml contentless;
    contentless.hasContent = false;
    const FilePath a = piece("0001AA", "", "0002AA", contentless);
    const FilePath d = piece("0004AA", "0001AA", "");
    EXPECT_EQ(p2().sortSpannedClipSeries({d, a}), (FilePaths{d, a}));
}

TEST_F(P2Span, KeptPiecesThatWereChainedAreLostWhereAPieceHasNoContent) {
    P2ClipXml contentless;
    contentless.hasContent = false;
    const FilePath a = piece("0001AA", "", "0002AA");
    const FilePath b = piece("0002AA", "0001AA", "0003AA");
    const FilePath c = piece("0003AA", "0002AA", "0004AA", contentless);
    const FilePath d = piece("0004AA", "0003AA", "");
    EXPECT_EQ(p2().sortSpannedClipSeries({a, b, c, d}), (FilePaths{a, c, d}));
    EXPECT_EQ(p2().sortSpannedClipSeries({a, c, b, d}), (FilePaths{a, c, b, d}));
}

TEST_F(P2Span, AbsentNamesEqualNothing) {
    const auto write = [&](const std::string& name, const std::string& body) {
        card_.write("CONTENTS/CLIP/" + name + ".XML", "<P2Main><ClipContent><ClipName>" + name +
                                                          "</ClipName></ClipContent><Top/>" + body +
                                                          "</P2Main>");
        return card_ / ("CONTENTS/VIDEO/" + name + ".MXF");
    };
    const FilePath a = write("0001AA", "");
    const FilePath b = write("0002AA", "<Previous/><Next/>");
    const FilePath d = write("0004AA", "<Previous/>");
    EXPECT_EQ(p2().sortSpannedClipSeries({d, b, a}), (FilePaths{d, b, a}));
    EXPECT_EQ(p2().sortSpannedClipSeries({d, a}), (FilePaths{a, d}));
}

TEST_F(P2Span, FiveHundredShuffledPieces) {
    constexpr int kPieces = 500;
    const auto name = [](int number) { return std::to_string(10000 + number).substr(1) + "AA"; };
    FilePaths inOrder;
    inOrder.reserve(kPieces);
    for (int i = 0; i < kPieces; ++i) {
        inOrder.push_back(
            piece(name(i), i == 0 ? "" : name(i - 1), i == kPieces - 1 ? "" : name(i + 1)));
    }
    FilePaths files = inOrder;
    std::shuffle(files.begin(), files.end(), std::mt19937{20240229});
    EXPECT_EQ(p2().sortSpannedClipSeries(files), inOrder);
}

// ---- drives

class P2Drive : public testing::Test {
protected:
    P2Drive() {
        services_->mountTable = mounts_;
        services_->systemLog = log_;
        services_->resourceFolder = resources_.path();
        mounts_->mountCard(card_.path());
    }

    void fillCard() const {
        for (const char* name :
             {"LASTCLIP.TXT", "CONTENTS/VIDEO/0001AB.MXF", "CONTENTS/CLIP/0001AB.XML", ".hidden"}) {
            card_.write(name, "old");
        }
    }

    platform::ScopedServices services_;
    std::shared_ptr<platform::FakeMountTable> mounts_ =
        std::make_shared<platform::FakeMountTable>();
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
    test::TemporaryFolder card_;
    test::TemporaryFolder resources_;
};

TEST_F(P2Drive, MatchesWithVideoFolderAndMarker) {
    EXPECT_FALSE(p2().drivePathMatchesVolumeStructure(card_.path()));
    card_.makeFolder("CONTENTS/VIDEO");
    EXPECT_FALSE(p2().drivePathMatchesVolumeStructure(card_.path()));
    card_.write("LASTCLIP.TXT");
    EXPECT_TRUE(p2().drivePathMatchesVolumeStructure(card_.path()));
    mounts_->mounted.clear();
    EXPECT_FALSE(p2().drivePathMatchesVolumeStructure(card_.path()));
}

TEST_F(P2Drive, ResetKeepsTheFoldersAndPutsTheMarkerBack) {
    fillCard();
    resources_.write("LASTCLIP.TXT", "new");
    EXPECT_TRUE(p2().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_TRUE(folderExists(card_ / "CONTENTS/VIDEO"));
    EXPECT_FALSE(itemExists(card_ / "CONTENTS/VIDEO/0001AB.MXF"));
    EXPECT_FALSE(itemExists(card_ / "CONTENTS/CLIP/0001AB.XML"));
    EXPECT_FALSE(itemExists(card_ / ".hidden"));
    EXPECT_EQ(test::fileContents(card_ / "LASTCLIP.TXT"), "new");
    EXPECT_TRUE(p2().drivePathMatchesVolumeStructure(card_.path()));
    const auto notices = log_->notices();
    EXPECT_EQ(std::count(notices.begin(), notices.end(), "File Exists"), 1);
    EXPECT_EQ(std::count(notices.begin(), notices.end(), "LASTCLIP was not copied back"), 0);
    EXPECT_EQ(std::count(notices.begin(), notices.end(), "Spotlight files could not be removed"),
              1);
}

TEST_F(P2Drive, KeptResetAnswersYesThoughTheMarkerIsNotPutBack) {
    fillCard();
    EXPECT_TRUE(p2().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_FALSE(itemExists(card_ / "LASTCLIP.TXT"));
    const auto notices = log_->notices();
    EXPECT_EQ(std::count(notices.begin(), notices.end(), "File Exists"), 0);
    EXPECT_EQ(std::count(notices.begin(), notices.end(), "LASTCLIP was not copied back"), 1);
}

TEST_F(P2Drive, ResetLeavesADriveAloneThatIsNoCard) {
    card_.write("CONTENTS/VIDEO/0001AB.MXF", "old");
    EXPECT_FALSE(p2().resetPlan(card_.path()));
    EXPECT_FALSE(p2().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_EQ(test::fileContents(card_ / "CONTENTS/VIDEO/0001AB.MXF"), "old");
}

TEST_F(P2Drive, ResetStopsAtALinkThatLeadsNowhere) {
    fillCard();
    card_.link("CONTENTS/AUDIO/link", "nowhere");
    EXPECT_FALSE(p2().formatDriveToMatchValidVolumeStructure(card_.path()));
}

TEST_F(P2Drive, ResetNeverFollowsALink) {
    const test::CardTree outside{"kept"};
    fillCard();
    resources_.write("LASTCLIP.TXT", "new");
    card_.link("CONTENTS/link", outside.path());
    EXPECT_TRUE(p2().formatDriveToMatchValidVolumeStructure(card_.path()));
    EXPECT_TRUE(itemExists(outside / "kept"));
    EXPECT_FALSE(itemExists(card_ / "CONTENTS/link"));
}

TEST_F(P2Drive, PlanTouchesNothingAndTellsEachStep) {
    fillCard();
    const auto plan = p2().resetPlan(card_.path());
    ASSERT_TRUE(plan);
    ASSERT_EQ(plan->size(), 4U);
    EXPECT_EQ(description(plan->front()),
              "remove every file below " + card_.path() + ", keeping the folders");
    EXPECT_EQ(description(plan->at(2)),
              "copy " + (resources_ / "LASTCLIP.TXT") + " to " + (card_ / "LASTCLIP.TXT"));
    EXPECT_TRUE(itemExists(card_ / "CONTENTS/VIDEO/0001AB.MXF"));
}

}  // namespace
}  // namespace qrx
