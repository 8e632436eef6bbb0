#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileQuestions.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/ports/Services.h"
#include "support/PlainUser.h"
#include "support/TemporaryFolder.h"
#include "volumes/QRXAVCHDUtility.h"
#include "volumes/QRXCanonAVCHDUtility.h"
#include "volumes/QRXPanasonicAVCHDUtility.h"
#include "volumes/QRXSonyAVCHDUtility.h"

namespace qrx {
namespace {

const std::vector<std::string> kItems{"BDMV/STREAM/", "BDMV/PLAYLIST/", "BDMV/CLIPINF/",
                                      "BDMV/INDEX.BDM", "BDMV/MOVIEOBJ.BDM"};

/// A folder with the layout below `root`, `missing` left out.
void layOut(const test::TemporaryFolder& card, const std::string& root,
            std::string_view missing = {}) {
    for (const std::string& item : kItems) {
        if (item == missing) continue;
        std::string name = root;
        name.append("/").append(item);
        if (name.ends_with('/')) {
            card.makeFolder(name);
        } else {
            card.write(name);
        }
    }
}

class AvchdDrive : public testing::Test {
protected:
    AvchdDrive() { services_->mountTable = mounts_; }

    platform::ScopedServices services_;
    std::shared_ptr<platform::FakeMountTable> mounts_ =
        std::make_shared<platform::FakeMountTable>();
    test::TemporaryFolder card_;
};

TEST_F(AvchdDrive, WholeLayoutOnARemovableDriveMatches) {
    mounts_->mountCard(card_.path());
    layOut(card_, "PRIVATE/AVCHD");
    EXPECT_TRUE(QRXAVCHDUtility().drivePathMatchesVolumeStructure(card_.path()));
    EXPECT_TRUE(QRXPanasonicAVCHDUtility().drivePathMatchesVolumeStructure(card_.path()));
    EXPECT_FALSE(QRXSonyAVCHDUtility().drivePathMatchesVolumeStructure(card_.path()));
}

TEST_F(AvchdDrive, KeptCanonDriveNeedsNoCanonFolder) {
    mounts_->mountCard(card_.path());
    layOut(card_, "PRIVATE/AVCHD");
    EXPECT_TRUE(QRXCanonAVCHDUtility().drivePathMatchesVolumeStructure(card_.path()));
}

TEST_F(AvchdDrive, SonyLayoutStandsAtTheRoot) {
    mounts_->mountCard(card_.path());
    layOut(card_, "AVCHD");
    EXPECT_TRUE(QRXSonyAVCHDUtility().drivePathMatchesVolumeStructure(card_.path()));
    EXPECT_FALSE(QRXAVCHDUtility().drivePathMatchesVolumeStructure(card_.path()));
}

TEST_F(AvchdDrive, EveryItemIsNeeded) {
    mounts_->mountCard(card_.path());
    for (const std::string& item : kItems) {
        SCOPED_TRACE(item);
        const test::TemporaryFolder other;
        mounts_->mountCard(other.path());
        layOut(other, "PRIVATE/AVCHD", item);
        layOut(other, "AVCHD", item);
        EXPECT_FALSE(QRXAVCHDUtility().drivePathMatchesVolumeStructure(other.path()));
        EXPECT_FALSE(QRXSonyAVCHDUtility().drivePathMatchesVolumeStructure(other.path()));
    }
}

TEST_F(AvchdDrive, FolderThatIsNoRemovableDriveNeverMatches) {
    mounts_->mountDisk(card_.path());
    layOut(card_, "PRIVATE/AVCHD");
    EXPECT_FALSE(QRXAVCHDUtility().drivePathMatchesVolumeStructure(card_.path()));
}

TEST_F(AvchdDrive, PathsAreComparedAsTheyAreWritten) {
    mounts_->mountCard(card_.path());
    layOut(card_, "PRIVATE/AVCHD");
    EXPECT_FALSE(QRXAVCHDUtility().drivePathMatchesVolumeStructure(card_.path() + "/"));
    EXPECT_FALSE(QRXAVCHDUtility().drivePathMatchesVolumeStructure(""));
}

// ---- emptying a drive

TEST(AvchdFormat, RemovesEverythingAndMakesNothing) {
    const test::CardTree card{"PRIVATE/AVCHD/BDMV/STREAM/00001.MTS", "AVCHD/x", ".hidden", "notes",
                              "empty/"};
    EXPECT_TRUE(QRXAVCHDUtility().formatDriveToMatchValidVolumeStructure(card.path()));
    EXPECT_TRUE(folderExists(card.path()));
    EXPECT_EQ(::rmdir(card.path().c_str()), 0) << "something is left";
}

TEST(AvchdFormat, EveryMakerEmptiesADrive) {
    const test::CardTree canon{"a"};
    const test::CardTree sony{"a"};
    const test::CardTree panasonic{"a"};
    EXPECT_TRUE(QRXCanonAVCHDUtility().formatDriveToMatchValidVolumeStructure(canon.path()));
    EXPECT_TRUE(QRXSonyAVCHDUtility().formatDriveToMatchValidVolumeStructure(sony.path()));
    EXPECT_TRUE(
        QRXPanasonicAVCHDUtility().formatDriveToMatchValidVolumeStructure(panasonic.path()));
    EXPECT_FALSE(itemExists(canon / "a"));
    EXPECT_FALSE(itemExists(sony / "a"));
    EXPECT_FALSE(itemExists(panasonic / "a"));
}

TEST(AvchdFormat, KeptAnswerIsYesWhereThereIsNothingToList) {
    const test::TemporaryFolder folder;
    const FilePath file = folder.write("file", "stays");
    EXPECT_TRUE(QRXAVCHDUtility().formatDriveToMatchValidVolumeStructure(folder / "missing"));
    EXPECT_TRUE(QRXAVCHDUtility().formatDriveToMatchValidVolumeStructure(file));
    EXPECT_TRUE(QRXAVCHDUtility().formatDriveToMatchValidVolumeStructure(""));
    EXPECT_EQ(test::fileContents(file), "stays");
}

TEST(AvchdFormat, LinksAreRemovedAndNeverFollowed) {
    const test::CardTree outside{"kept/file"};
    const test::CardTree card{"a"};
    card.link("toFolder", outside / "kept");
    card.link("toFile", outside / "kept/file");
    card.link("dangling", "nowhere");
    card.link("deep/toFolder", outside / "kept");
    EXPECT_TRUE(QRXAVCHDUtility().formatDriveToMatchValidVolumeStructure(card.path()));
    EXPECT_TRUE(itemExists(outside / "kept/file"));
    EXPECT_EQ(::rmdir(card.path().c_str()), 0) << "something is left";
}

TEST(AvchdFormat, DriveThatIsALinkIsLeftAlone) {
    const test::CardTree card{"a"};
    const test::TemporaryFolder elsewhere;
    const FilePath link = elsewhere.link("drive", card.path());
    EXPECT_FALSE(QRXAVCHDUtility().formatDriveToMatchValidVolumeStructure(link));
    EXPECT_FALSE(QRXAVCHDUtility().formatDriveToMatchValidVolumeStructure(link + "/"));
    EXPECT_TRUE(itemExists(card / "a"));
}

TEST(AvchdFormat, StopsAtTheFirstEntryThatCannotBeRemoved) {
    const test::CardTree card{"a", "b/file", "c"};
    ASSERT_EQ(::chmod(card.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod((card / "b").c_str(), 0555), 0);
    EXPECT_EQ(test::askedByPlainUser([&] {
                  const bool done =
                      QRXAVCHDUtility().formatDriveToMatchValidVolumeStructure(card.path());
                  return std::string(done ? "YES" : "NO");
              }),
              "NO");
    EXPECT_FALSE(itemExists(card / "a"));
    EXPECT_TRUE(itemExists(card / "b/file"));
    EXPECT_TRUE(itemExists(card / "c"));
    ASSERT_EQ(::chmod((card / "b").c_str(), 0755), 0);
}

}  // namespace
}  // namespace qrx
