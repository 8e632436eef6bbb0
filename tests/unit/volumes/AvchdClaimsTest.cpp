#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "volumes/QRXAVCHDUtility.h"
#include "volumes/QRXCanonAVCHDUtility.h"
#include "volumes/QRXHDMediaVolumeAggregate.h"
#include "volumes/QRXPanasonicAVCHDUtility.h"
#include "volumes/QRXSonyAVCHDUtility.h"

namespace qrx {
namespace {

struct PathCase {
    const char* name;
    const char* path;
    bool generic;
    bool sony;
};

// Canon asks the disk and has tests of its own; Panasonic's test is the generic one.
constexpr PathCase kPaths[] = {
    {"OnACardWithoutPrivate", "/Volumes/X/AVCHD/BDMV/STREAM/00001.MTS", true, true},
    {"BelowPrivate", "/Volumes/X/PRIVATE/AVCHD/BDMV/STREAM/00001.MTS", true, false},
    {"BelowSmallPrivate", "/x/private/avchd/bdmv/stream/00001.MTS", true, true},
    {"BelowPrivateAndSmallStream", "/x/PRIVATE/AVCHD/BDMV/stream/00001.MTS", true, true},
    {"RelativePath", "AVCHD/BDMV/STREAM/00001.MTS", false, false},
    {"RelativePathWithFolder", "X/AVCHD/BDMV/STREAM/00001.MTS", true, true},
    {"SmallExtension", "/Volumes/X/AVCHD/BDMV/STREAM/00001.mts", false, false},
    {"SmallName", "/Volumes/X/AVCHD/BDMV/STREAM/clip.mts", false, false},
    {"SmallLetterInName", "/Volumes/X/AVCHD/BDMV/STREAM/CLIPa.MTS", false, false},
    {"BlankInName", "/Volumes/X/AVCHD/BDMV/STREAM/CLIP 1.MTS", true, true},
    {"M2tsExtension", "/Volumes/X/AVCHD/BDMV/STREAM/00001.M2TS", false, false},
    {"NoDot", "/Volumes/X/AVCHD/BDMV/STREAM/00001MTS", false, false},
    {"NothingButExtension", "/Volumes/X/AVCHD/BDMV/STREAM/.MTS", true, true},
    {"InSubfolder", "/Volumes/X/AVCHD/BDMV/STREAM/A/00001.MTS", false, false},
    {"InSubfolderOfItsOwnName", "/X/AVCHD/BDMV/STREAM/00001.MTS/00001.MTS", true, true},
    {"OutsideStream", "/Volumes/X/AVCHD/BDMV/00001.MTS", false, false},
    {"OutsideAvchd", "/Volumes/X/BDMV/STREAM/00001.MTS", false, false},
    {"LooseFile", "/Volumes/X/00001.MTS", false, false},
    {"TrailingSlash", "/Volumes/X/AVCHD/BDMV/STREAM/00001.MTS/", false, false},
    {"DoubledSlash", "/Volumes/X/AVCHD/BDMV/STREAM//00001.MTS", false, false},
    {"TheFolderItself", "/Volumes/X/AVCHD/BDMV/STREAM", false, false},
    {"TheFolderItselfWithSlash", "/Volumes/X/AVCHD/BDMV/STREAM/", false, false},
    {"ClipInformation", "/Volumes/X/AVCHD/BDMV/CLIPINF/00001.CPI", false, false},
    {"Sidecar", "/Volumes/X/AVCHD/BDMV/STREAM/._00001.MTS", true, true},
    {"FolderEndsInAvchd", "/Volumes/XAVCHD/BDMV/STREAM/00001.MTS", false, false},
    {"NestedAvchd", "/Volumes/X/AVCHD/AVCHD/BDMV/STREAM/00001.MTS", true, true},
    {"NameThatGrowsInCapitals",
     "/X/AVCHD/BDMV/STREAM/STRA\xC3\x9F"
     "E.MTS",
     false, false},
    {"CapitalOutsideAscii", "/X/AVCHD/BDMV/STREAM/\xC3\x89.MTS", true, true},
    {"NameThatIsNotUtf8", "/X/AVCHD/BDMV/STREAM/\xFF.MTS", true, true},
    {"Root", "/", false, false},
    {"EmptyPath", "", false, false},
};

class AvchdPath : public testing::TestWithParam<PathCase> {};

TEST_P(AvchdPath, IsClaimedByThePathAlone) {
    const FilePath path = GetParam().path;
    EXPECT_EQ(QRXAVCHDUtility().filePathMatchesVolumeStructure(path), GetParam().generic);
    EXPECT_EQ(QRXPanasonicAVCHDUtility().filePathMatchesVolumeStructure(path), GetParam().generic);
    EXPECT_EQ(QRXSonyAVCHDUtility().filePathMatchesVolumeStructure(path), GetParam().sony);
    EXPECT_FALSE(QRXCanonAVCHDUtility().filePathMatchesVolumeStructure(path));
}

INSTANTIATE_TEST_SUITE_P(Table, AvchdPath, testing::ValuesIn(kPaths),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(AvchdClaim, KeptNameWithASmallLetterIsClaimedByNobody) {
    const test::CardTree card{"PRIVATE/AVCHD/BDMV/STREAM/00001.mts", "PRIVATE/AVCHD/CANON/"};
    for (const FilePath& clip : {card / "PRIVATE/AVCHD/BDMV/STREAM/00001.mts",
                                 FilePath("/x/AVCHD/BDMV/STREAM/00001.mts")}) {
        EXPECT_FALSE(QRXAVCHDUtility().filePathMatchesVolumeStructure(clip)) << clip;
        EXPECT_FALSE(QRXCanonAVCHDUtility().filePathMatchesVolumeStructure(clip)) << clip;
        EXPECT_FALSE(QRXSonyAVCHDUtility().filePathMatchesVolumeStructure(clip)) << clip;
        EXPECT_FALSE(QRXPanasonicAVCHDUtility().filePathMatchesVolumeStructure(clip)) << clip;
    }
}

TEST(CanonAvchdClaim, NeedsTheCanonFolderAtTheCardsRoot) {
    const test::CardTree canon{"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS", "PRIVATE/AVCHD/CANON/"};
    const test::CardTree other{"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS"};
    const QRXCanonAVCHDUtility utility;
    const char* const clip = "PRIVATE/AVCHD/BDMV/STREAM/00001.MTS";
    EXPECT_TRUE(utility.filePathMatchesVolumeStructure(canon / clip));
    EXPECT_FALSE(utility.filePathMatchesVolumeStructure(other / clip));
}

TEST(CanonAvchdClaim, NeedsNoFileAtThePath) {
    const test::CardTree card{"PRIVATE/AVCHD/CANON/"};
    EXPECT_TRUE(QRXCanonAVCHDUtility().filePathMatchesVolumeStructure(
        card / "PRIVATE/AVCHD/BDMV/STREAM/00001.MTS"));
}

TEST(CanonAvchdClaim, CardRootIsFoundBelowCapitalPrivateOnly) {
    const test::CardTree card{"private/AVCHD/CANON/", "PRIVATE/AVCHD/CANON/"};
    EXPECT_FALSE(QRXCanonAVCHDUtility().filePathMatchesVolumeStructure(
        card / "private/AVCHD/BDMV/STREAM/00001.MTS"));
}

TEST(CanonAvchdClaim, CardRootIsThePartBeforeTheFirstPrivate) {
    const test::CardTree card{"PRIVATE/AVCHD/CANON/"};
    EXPECT_TRUE(QRXCanonAVCHDUtility().filePathMatchesVolumeStructure(
        card / "PRIVATE/AVCHD/COPY/PRIVATE/AVCHD/BDMV/STREAM/00001.MTS"));
}

TEST(CanonAvchdClaim, ClipOutsidePrivateIsNotCanons) {
    const test::CardTree card{"PRIVATE/AVCHD/CANON/", "AVCHD/BDMV/STREAM/00001.MTS"};
    EXPECT_FALSE(QRXCanonAVCHDUtility().filePathMatchesVolumeStructure(
        card / "AVCHD/BDMV/STREAM/00001.MTS"));
}

struct FailureCase {
    const char* name;
    const char* path;
    const char* phrase;
};

constexpr FailureCase kFailures[] = {
    {"Loose", "/x/00001.MTS", "the path leads through a folder AVCHD/BDMV/STREAM"},
    {"SmallName", "/x/AVCHD/BDMV/STREAM/a.MTS",
     "the file stands directly in the folder STREAM, and its name has no small letters"},
    {"OtherExtension", "/x/AVCHD/BDMV/STREAM/A.MOV", "the file's name ends in .MTS"},
    {"Private", "/x/PRIVATE/AVCHD/BDMV/STREAM/A.MTS",
     "the folder AVCHD does not stand in a folder PRIVATE (written in capitals)"},
};

class SonyAvchdFailure : public testing::TestWithParam<FailureCase> {};

TEST_P(SonyAvchdFailure, NamesTheCheckThatFailed) {
    const FilePath file = GetParam().path;
    ExaminedPath path(file);
    const StructureFinding found = QRXSonyAVCHDUtility().findStructure(path);
    EXPECT_FALSE(found.claimed);
    ASSERT_NE(found.decisive, nullptr);
    EXPECT_EQ(found.decisive->phrase, GetParam().phrase);
}

INSTANTIATE_TEST_SUITE_P(Table, SonyAvchdFailure, testing::ValuesIn(kFailures),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(AvchdShare, AggregateGivesEachClipToOneMaker) {
    const test::CardTree canon{"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS", "PRIVATE/AVCHD/CANON/"};
    const test::CardTree panasonic{"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS"};
    const test::CardTree sony{"AVCHD/BDMV/STREAM/00001.MTS"};
    const auto aggregate = QRXHDMediaVolumeAggregate::hdAggregate();
    const auto titleOf = [&](const FilePath& file) {
        return aggregate.utilityForFileAtPath(file).volumeTitle();
    };
    EXPECT_EQ(titleOf(canon / "PRIVATE/AVCHD/BDMV/STREAM/00001.MTS"), "Canon AVCHD");
    EXPECT_EQ(titleOf(panasonic / "PRIVATE/AVCHD/BDMV/STREAM/00001.MTS"), "Panasonic AVCHD");
    EXPECT_EQ(titleOf(sony / "AVCHD/BDMV/STREAM/00001.MTS"), "Sony NXCAM AVCHD");
    EXPECT_EQ(titleOf("/x/private/avchd/bdmv/stream/00001.MTS"), "Sony NXCAM AVCHD");
}

}  // namespace
}  // namespace qrx
