#include <memory>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/DriveActions.h"
#include "foundation/QRXFileSystemUtility.h"
#include "platform/fake/FakeDisks.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Pair;

class DriveActionsTest : public testing::Test {
protected:
    DriveActionsTest() {
        services_->mountTable = mounts_;
        services_->driveManager = manager_;
        services_->volumeIdentity = identity_;
        services_->systemLog = log_;
        mounts_->mountCard("/media/ann/CARD");
    }

    platform::ScopedServices services_;
    std::shared_ptr<platform::FakeMountTable> mounts_ =
        std::make_shared<platform::FakeMountTable>();
    std::shared_ptr<platform::FakeDriveManager> manager_ =
        std::make_shared<platform::FakeDriveManager>();
    std::shared_ptr<platform::FakeVolumeIdentity> identity_ =
        std::make_shared<platform::FakeVolumeIdentity>();
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
    QRXFileSystemUtility utility_;
};

TEST_F(DriveActionsTest, KeptEjectAnswersNoAlsoAfterSuccess) {
    EXPECT_FALSE(utility_.ejectDrive("CARD"));
    EXPECT_THAT(manager_->ejected, ElementsAre("/dev/sdb1"));
}

TEST_F(DriveActionsTest, EjectAnswersNoWhenRefusedOrUnknown) {
    manager_->refuses = true;
    EXPECT_FALSE(utility_.ejectDrive("CARD"));
    EXPECT_FALSE(utility_.ejectDrive("OTHER"));
    EXPECT_FALSE(utility_.ejectDrive(""));
    EXPECT_THAT(manager_->ejected, ElementsAre("/dev/sdb1"));
}

TEST_F(DriveActionsTest, RenameGivesTheNewName) {
    EXPECT_EQ(utility_.renameDrive("A-CAM", "CARD"), "A-CAM");
    EXPECT_THAT(manager_->renamed, ElementsAre(Pair("/dev/sdb1", "A-CAM")));
}

TEST_F(DriveActionsTest, RenameDoesNotExamineTheOutcome) {
    manager_->refuses = true;
    EXPECT_EQ(utility_.renameDrive("A-CAM", "CARD"), "A-CAM");
    EXPECT_EQ(utility_.renameDrive("A-CAM", "OTHER"), "A-CAM");
}

TEST_F(DriveActionsTest, RenameRefusesAnInvalidNameWithoutAsking) {
    EXPECT_FALSE(utility_.renameDrive("A:CAM", "CARD"));
    EXPECT_THAT(manager_->renamed, IsEmpty());
}

TEST_F(DriveActionsTest, DescriptionCarriesTheKeysOfTheHosts) {
    identity_->volumes["/media/ann/CARD"] = {"/media/ann/CARD", "/dev/sdb1", "exfat", "CARD",
                                             "1234-ABCD"};
    const auto description = utility_.diskArbitrationAttributesForURL("/media/ann/CARD/");
    ASSERT_TRUE(description);
    EXPECT_THAT(*description,
                ElementsAre(Pair("DAMediaBSDName", "sdb1"), Pair("DAVolumeKind", "exfat"),
                            Pair("DAVolumeName", "CARD"), Pair("DAVolumePath", "/media/ann/CARD"),
                            Pair("DAVolumeUUID", "1234-ABCD")));
    EXPECT_EQ(utility_.uuidForDiskRepresentingURL("/media/ann/CARD"), "1234-ABCD");
}

TEST_F(DriveActionsTest, NothingForAVolumeWithoutUuidOrWithoutMount) {
    identity_->volumes["/media/ann/CARD"] = {"/media/ann/CARD", "/dev/sdb1", "exfat", "", ""};
    EXPECT_EQ(utility_.diskArbitrationAttributesForURL("/media/ann/CARD")->size(), 3U);
    EXPECT_FALSE(utility_.uuidForDiskRepresentingURL("/media/ann/CARD"));
    EXPECT_FALSE(utility_.diskArbitrationAttributesForURL("/media/ann/OTHER"));
    EXPECT_FALSE(utility_.uuidForDiskRepresentingURL(""));
}

TEST_F(DriveActionsTest, NewUuidsAreRandomVersionFour) {
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        const std::string uuid = utility_.generateUUID();
        EXPECT_THAT(uuid, MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                                       "[0-9A-F]{12}"));
        seen.insert(uuid);
    }
    EXPECT_EQ(seen.size(), 100U);
}

TEST_F(DriveActionsTest, BytesAreComparedByTheTool) {
    const test::TemporaryFolder folder;
    const FilePath a = folder.write("a `id` $(x)\n.mov", "same bytes");
    const FilePath b = folder.write("-b", "same bytes");
    const FilePath c = folder.write("c", "same bytez");
    EXPECT_TRUE(utility_.bytesForFileAtPath(a, b));
    EXPECT_TRUE(utility_.bytesForFileAtPath(a, a));
    EXPECT_FALSE(utility_.bytesForFileAtPath(a, c));
    EXPECT_FALSE(utility_.bytesForFileAtPath(a, folder / "missing"));
    EXPECT_FALSE(utility_.bytesForFileAtPath("", ""));
}

TEST_F(DriveActionsTest, PipesAreNotCompared) {
    const test::TemporaryFolder folder;
    const FilePath pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(utility_.bytesForFileAtPath(pipe, pipe));
}

TEST(CompareLine, EscapesWhatTheSetHolds) {
    EXPECT_EQ(compareLine("cmp", "/a b", "/c'd"), "cmp /a\\ b /c\\'d");
    EXPECT_EQ(compareLine("cmp", "/`id`", "/$(x)\n\\\""), "cmp /`id` /\\$\\(x\\)\n\\\\\"");
}

}  // namespace
}  // namespace qrx
