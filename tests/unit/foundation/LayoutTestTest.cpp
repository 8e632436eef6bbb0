#include <string>

#include <gtest/gtest.h>

#include "foundation/LayoutTest.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using test::CardTree;
using test::TemporaryFolder;

TEST(FolderHoldsLayout, AnywhereInThePath) {
    const CardTree card{"BPAV/CLPR/708_0001_01/708_0001_01.MP4"};
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/BPAV/CLPR", SubPath::anywhere, std::nullopt));
    EXPECT_TRUE(folderHoldsLayout(card.path(), "0001_01.MP", SubPath::anywhere, std::nullopt));
    EXPECT_FALSE(folderHoldsLayout(card.path(), "/bpav/clpr", SubPath::anywhere, std::nullopt));
    EXPECT_FALSE(folderHoldsLayout(card.path(), "/BPAV/TAKR", SubPath::anywhere, std::nullopt));
}

TEST(FolderHoldsLayout, AFilesPathIsEnough) {
    const CardTree card{"BPAV/CLPR"};
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/BPAV/CLPR", SubPath::anywhere, std::nullopt));
}

TEST(FolderHoldsLayout, AtTheEndOfThePath) {
    const CardTree card{"AVCHD/BDMV/STREAM/00001.MTS"};
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/BDMV/STREAM", SubPath::atEnd, std::nullopt));
    EXPECT_FALSE(folderHoldsLayout(card.path(), "/AVCHD/BDM", SubPath::atEnd, std::nullopt));
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/00001.MTS", SubPath::atEnd, std::nullopt));
}

TEST(FolderHoldsLayout, TheFoldersOwnTextCounts) {
    const TemporaryFolder folder;
    folder.write("BPAV/CLPR/x");
    EXPECT_TRUE(
        folderHoldsLayout(folder / "BPAV/CLPR", "/BPAV/CLPR", SubPath::anywhere, std::nullopt));
    EXPECT_TRUE(folderHoldsLayout(folder / "BPAV", "/BPAV//CLPR", SubPath::anywhere,
                                  std::nullopt) == false);
    EXPECT_TRUE(
        folderHoldsLayout(folder / "BPAV/", "/BPAV//CLPR", SubPath::anywhere, std::nullopt));
}

TEST(FolderHoldsLayout, ExtensionIsThatOfAnEntryOneLevelDownInAnyCase) {
    const CardTree card{"BDMV/STREAM/00001.MTS", "BDMV/PLAYLIST/00000.mpl"};
    for (const char* const extension : {"MTS", "mts", ".MTS", ".mts", "1.mTs"}) {
        EXPECT_TRUE(folderHoldsLayout(card.path(), "/STREAM", SubPath::atEnd, extension));
    }
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/PLAYLIST", SubPath::atEnd, "MPL"));
    EXPECT_FALSE(folderHoldsLayout(card.path(), "/STREAM", SubPath::atEnd, "MPL"));
    EXPECT_FALSE(folderHoldsLayout(card.path(), "/BDMV", SubPath::atEnd, "MTS"));
}

TEST(FolderHoldsLayout, EmptySubPathOrExtensionMatchesNothing) {
    const CardTree card{"BDMV/STREAM/00001.MTS"};
    EXPECT_FALSE(folderHoldsLayout(card.path(), "", SubPath::anywhere, std::nullopt));
    EXPECT_FALSE(folderHoldsLayout(card.path(), "", SubPath::atEnd, std::nullopt));
    EXPECT_FALSE(folderHoldsLayout(card.path(), "/STREAM", SubPath::atEnd, ""));
}

TEST(FolderHoldsLayout, GoesOnAfterAMatchWithoutTheExtension) {
    const CardTree card{"A/CLIP/x.txt", "B/CLIP/x.mxf", "C/CLIP"};
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/CLIP", SubPath::atEnd, "MXF"));
    EXPECT_FALSE(folderHoldsLayout(card.path(), "/CLIP", SubPath::atEnd, "MOV"));
}

TEST(FolderHoldsLayout, HiddenFoldersCountBelowTheTopOnly) {
    const CardTree card{".Trashes/BPAV/CLPR/x.mp4"};
    EXPECT_FALSE(folderHoldsLayout(card.path(), "/BPAV/CLPR", SubPath::anywhere, std::nullopt));
    card.write("A/.hidden/BPAV/CLPR/x.mp4");
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/BPAV/CLPR", SubPath::atEnd, "mp4"));
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/.hidden", SubPath::atEnd, std::nullopt));
}

TEST(FolderHoldsLayout, HiddenEntriesHaveTheExtensionToo) {
    const CardTree card{"CLIP/._x.MXF"};
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/CLIP", SubPath::atEnd, ".mxf"));
}

TEST(FolderHoldsLayout, ALinkToAFolderIsListedButNotSearched) {
    const TemporaryFolder folder;
    folder.write("A/deep/x.mxf");
    folder.write("A/y.mov");
    folder.link("CLIP", "A");
    EXPECT_TRUE(folderHoldsLayout(folder.path(), "/CLIP", SubPath::atEnd, "MOV"));
    EXPECT_FALSE(folderHoldsLayout(folder.path(), "/CLIP", SubPath::atEnd, "MXF"));
    EXPECT_FALSE(folderHoldsLayout(folder.path(), "/CLIP/deep", SubPath::anywhere, std::nullopt));
    folder.link("LOST", "nowhere");
    EXPECT_TRUE(folderHoldsLayout(folder.path(), "/LOST", SubPath::atEnd, std::nullopt));
    EXPECT_FALSE(folderHoldsLayout(folder.path(), "/LOST", SubPath::atEnd, "MXF"));
}

TEST(FolderHoldsLayout, NamesBeyondAscii) {
    const CardTree card{"CLIP/x.MTSÉ", "RAW/y.\xFFmts"};
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/CLIP", SubPath::atEnd, "mtsé"));
    EXPECT_TRUE(folderHoldsLayout(card.path(), "/RAW", SubPath::atEnd, "mts"));
}

TEST(FolderHoldsLayout, WhereThereIsNoFolderNothingIsHeld) {
    const TemporaryFolder folder;
    folder.write("BPAV");
    EXPECT_FALSE(folderHoldsLayout(folder / "BPAV", "BPAV", SubPath::anywhere, std::nullopt));
    EXPECT_FALSE(folderHoldsLayout(folder / "absent", "absent", SubPath::anywhere, std::nullopt));
    EXPECT_FALSE(folderHoldsLayout("", "a", SubPath::anywhere, std::nullopt));
    EXPECT_FALSE(folderHoldsLayout(folder.makeFolder("E"), "/E", SubPath::anywhere, std::nullopt));
}

}  // namespace
}  // namespace qrx
