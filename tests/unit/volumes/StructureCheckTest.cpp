#include <array>
#include <string>

#include <gtest/gtest.h>

#include "support/ReportingTool.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"
#include "volumes/StructureCheck.h"

namespace qrx {
namespace {

CheckVerdict endsInA(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return path.path().ends_with('a') ? CheckVerdict::passes : CheckVerdict::fails;
}

CheckVerdict isLong(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return path.path().size() > 4 ? CheckVerdict::passes : CheckVerdict::fails;
}

CheckVerdict isKnown(const QRXHDMediaVolumeUtilityObject&, ExaminedPath& path) {
    return path.path() == "known" ? CheckVerdict::decides : CheckVerdict::passes;
}

constexpr std::array kChecks{
    StructureCheck{"it is known", isKnown},
    StructureCheck{"it is long", isLong},
    StructureCheck{"it ends in a", endsInA},
};

StructureFinding finding(const FilePath& file, std::span<const StructureCheck> checks = kChecks) {
    ExaminedPath path(file);
    return walkStructureChecks(checks, QRXHDMediaVolumeUtilityObject::sharedInstance(), path);
}

TEST(StructureCheck, PathThatPassesEveryCheckIsClaimed) {
    const FilePath file = "/clip/a";
    const StructureFinding found = finding(file);
    EXPECT_TRUE(found.claimed);
    EXPECT_EQ(found.decisive, nullptr);
}

TEST(StructureCheck, FirstFailingCheckRejectsAndIsNamed) {
    const FilePath file = "b";
    const StructureFinding found = finding(file);
    EXPECT_FALSE(found.claimed);
    ASSERT_NE(found.decisive, nullptr);
    EXPECT_EQ(found.decisive->phrase, "it is long");
}

TEST(StructureCheck, DecidingCheckClaimsWhateverTheLaterOnesWouldSay) {
    const FilePath file = "known";
    const StructureFinding found = finding(file);
    EXPECT_TRUE(found.claimed);
    ASSERT_NE(found.decisive, nullptr);
    EXPECT_EQ(found.decisive->phrase, "it is known");
}

TEST(StructureCheck, EmptyListClaimsNothing) {
    const FilePath file = "known";
    const StructureFinding found = finding(file, {});
    EXPECT_FALSE(found.claimed);
    EXPECT_EQ(found.decisive, nullptr);
}

TEST(ExaminedPath, TellsThePathInBothCasesAndItsLastNames) {
    const FilePath file = "/Card/straße/Clip.mts";
    ExaminedPath path(file);
    EXPECT_EQ(path.path(), file);
    EXPECT_EQ(path.upperCased(), "/CARD/STRASSE/CLIP.MTS");
    EXPECT_EQ(path.lowerCased(), "/card/straße/clip.mts");
    EXPECT_EQ(path.fileName(), "Clip.mts");
    EXPECT_EQ(path.folderName(), "straße");
}

TEST(ExaminedPath, LastNamesOfPathsThatHaveNone) {
    struct Row {
        FilePath path;
        std::string_view folder;
        std::string_view file;
    };
    for (const Row& row : {Row{"", "", ""}, Row{"/", "/", "/"}, Row{"a", "", "a"},
                           Row{"/a", "/", "a"}, Row{"/a//b/", "a", "b"}}) {
        SCOPED_TRACE(row.path);
        const ExaminedPath path(row.path);
        EXPECT_EQ(path.folderName(), row.folder);
        EXPECT_EQ(path.fileName(), row.file);
    }
}

TEST(ExaminedPath, RunsTheToolOnceHoweverOftenItIsAsked) {
    const test::ReportingTool tool("Input #0, mov, from 'x':\n  Duration: 00:00:01.00, start: 0\n");
    const test::TemporaryFolder folder;
    const FilePath file = folder.write("x.mov");
    ExaminedPath path(file);
    EXPECT_EQ(tool.runs(), 0U);
    EXPECT_EQ(path.ffmpegMetadata().valueForKey(QRXMediaMetadataVideoDurationKey), "00:00:01.00");
    EXPECT_FALSE(path.ffmpegMetadata().valueForKey(QRXMediaMetadataVideoFrameRate));
    EXPECT_EQ(tool.runs(), 1U);
}

}  // namespace
}  // namespace qrx
