#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/Drives.h"
#include "foundation/QRXFileSystemUtility.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "support/MountedImage.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DrivesTest : public testing::Test {
protected:
    DrivesTest() { services_->mountTable = table_; }

    platform::ScopedServices services_;
    std::shared_ptr<platform::FakeMountTable> table_ = std::make_shared<platform::FakeMountTable>();
    QRXFileSystemUtility utility_;
};

TEST_F(DrivesTest, NothingMountedGivesEmptyAnswers) {
    EXPECT_THAT(utility_.removableDrives(), IsEmpty());
    EXPECT_THAT(utility_.localVolumes(), IsEmpty());
    EXPECT_THAT(utility_.allMountedVolumes(), IsEmpty());
    EXPECT_THAT(utility_.allMountedVolumeURLs(), IsEmpty());
    EXPECT_FALSE(utility_.driveIsRemovable("/"));
    EXPECT_FALSE(utility_.volumeMountedAtPath("/"));
}

TEST_F(DrivesTest, RemovableDiskIsADriveWhereverItIsMounted) {
    table_->mountDisk("/");
    table_->mountCard("/mnt/card");
    EXPECT_THAT(utility_.removableDrives(), ElementsAre("/mnt/card"));
}

TEST_F(DrivesTest, WhatDesktopsMountIsRemovableWhateverTheDiskSays) {
    table_->mountDisk("/media/ann/A");
    table_->mountOther("/run/media/ann/B", "fuse.exfat");
    table_->mountDisk("/media");
    table_->mountDisk("/run/media");
    table_->mountDisk("/mediation/C");
    table_->mountDisk("/srv/media/D");
    EXPECT_THAT(utility_.removableDrives(), ElementsAre("/media/ann/A", "/run/media/ann/B"));
}

TEST_F(DrivesTest, DrivesAreSortedByPlainComparison) {
    // By unit value: capitals before small letters, a prefix first, no regard for numbers. The
    // last two change places when bytes are compared instead of UTF-16 units.
    for (const char* name : {"a1", "Z1", "A B", "A", "CLIP9", "CLIP10", "\uFF21", "\U0001F600"}) {
        table_->mountCard(std::string("/media/") + name);
    }
    EXPECT_THAT(utility_.removableDrives(),
                ElementsAre("/media/A", "/media/A B", "/media/CLIP10", "/media/CLIP9", "/media/Z1",
                            "/media/a1", "/media/\U0001F600", "/media/\uFF21"));
}

TEST_F(DrivesTest, TwoMountsAtOnePlaceAreOneDrive) {
    table_->mountCard("/media/A");
    table_->mountCard("/media/A");
    EXPECT_THAT(utility_.removableDrives(), ElementsAre("/media/A"));
    EXPECT_THAT(utility_.localVolumes(), ElementsAre("/media/A"));
    EXPECT_THAT(utility_.allMountedVolumes(), ElementsAre("/media/A", "/media/A"));
}

TEST_F(DrivesTest, LocalVolumesHaveABlockDevice) {
    table_->mountCard("/media/Z");
    table_->mountOther("/proc", "proc");
    table_->mountOther("/mnt/share", "nfs4");
    table_->mountDisk("/");
    EXPECT_THAT(utility_.localVolumes(), ElementsAre("/", "/media/Z"));
}

TEST_F(DrivesTest, DriveIsComparedAsText) {
    table_->mountCard("/media/A");
    EXPECT_TRUE(utility_.driveIsRemovable("/media/A"));
    EXPECT_FALSE(utility_.driveIsRemovable("/media/A/"));
    EXPECT_FALSE(utility_.driveIsRemovable("/media/a"));
    EXPECT_FALSE(utility_.driveIsRemovable("/media//A"));
    EXPECT_FALSE(utility_.driveIsRemovable("/media/A/DCIM"));
    EXPECT_FALSE(utility_.driveIsRemovable(""));
}

TEST_F(DrivesTest, AllMountedVolumesKeepTheTablesOrder) {
    table_->mountOther("/sys", "sysfs");
    table_->mountDisk("/");
    table_->mountCard("/media/A");
    EXPECT_THAT(utility_.allMountedVolumes(), ElementsAre("/sys", "/", "/media/A"));
}

TEST_F(DrivesTest, UrlsLeaveOutHiddenVolumes) {
    table_->mountDisk("/");
    table_->mountDisk("/boot/efi");
    table_->mountOther("/proc", "proc");
    table_->mountOther("/run/user/1000", "tmpfs");
    table_->mountOther("/home/ann/.cache/doc", "fuse.portal");
    table_->mountCard("/run/media/ann/CARD 1");
    table_->mountCard("/run/media/ann/CARD 1");
    table_->mountCard("/media/Ü#%?");
    EXPECT_THAT(utility_.allMountedVolumeURLs(),
                ElementsAre("file:///", "file:///run/media/ann/CARD%201/",
                            "file:///media/%C3%9C%23%25%3F/"));
}

struct HiddenCase {
    const char* name;
    const char* mountPoint;
    bool hidden;
};

constexpr HiddenCase kHiddenCases[] = {
    {"Root", "/", false},
    {"Card", "/media/ann/CARD", false},
    {"DotAtTheEnd", "/mnt/.snapshots", true},
    {"DotInTheMiddle", "/mnt/.hidden/volume", true},
    {"DotInsideAName", "/mnt/take.one", false},
    {"Proc", "/proc", true},
    {"BelowProc", "/proc/sys/fs/binfmt_misc", true},
    {"Sys", "/sys", true},
    {"Dev", "/dev/shm", true},
    {"Boot", "/boot", true},
    {"Run", "/run", true},
    {"BelowRun", "/run/lock", true},
    {"RunMedia", "/run/media/ann/CARD", false},
    {"RunMediaItself", "/run/media", false},
    {"RunMediaWithADot", "/run/media/ann/.CARD", true},
    {"RunMediation", "/run/mediation", true},
    {"DeviceNotDev", "/device", false},
    {"Bootleg", "/bootleg/proc", false},
};

class HiddenMountPoint : public testing::TestWithParam<HiddenCase> {};

TEST_P(HiddenMountPoint, IsToldByItsPath) {
    EXPECT_EQ(isHiddenMountPoint(GetParam().mountPoint), GetParam().hidden);
}

INSTANTIATE_TEST_SUITE_P(Table, HiddenMountPoint, testing::ValuesIn(kHiddenCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(DrivesTest, MountedVolumeIsFoundInStandardisedForm) {
    table_->mountDisk("/");
    table_->mountCard("/media/CARD");
    table_->mountDisk("/private/var/data");
    EXPECT_TRUE(utility_.volumeMountedAtPath("/"));
    EXPECT_TRUE(utility_.volumeMountedAtPath("/media/CARD"));
    EXPECT_TRUE(utility_.volumeMountedAtPath("/media//./CARD/"));
    EXPECT_TRUE(utility_.volumeMountedAtPath("/media/x/../CARD"));
    EXPECT_TRUE(utility_.volumeMountedAtPath("/var/data"));
    EXPECT_FALSE(utility_.volumeMountedAtPath("/media"));
    EXPECT_FALSE(utility_.volumeMountedAtPath("/media/card"));
    EXPECT_FALSE(utility_.volumeMountedAtPath("media/CARD"));
    EXPECT_FALSE(utility_.volumeMountedAtPath("/media/CARD/DCIM"));
    EXPECT_FALSE(utility_.volumeMountedAtPath(""));
    EXPECT_FALSE(utility_.volumeMountedAtPath(std::nullopt));
}

TEST_F(DrivesTest, LayoutOfADriveIsSoughtOnRemovableDrivesOnly) {
    const test::CardTree card{"PRIVATE/AVCHD/BDMV/STREAM/00000.MTS"};
    const auto holdsStreams = [&](const FilePath& drive) {
        return utility_.removableDriveHasFilesContainingSubPath(drive, "/BDMV/STREAM", true,
                                                                ".mts");
    };
    EXPECT_FALSE(holdsStreams(card.path())) << "not mounted";
    table_->mountDisk(card.path());
    EXPECT_FALSE(holdsStreams(card.path())) << "not removable";
    table_->mountCard(card.path());
    EXPECT_TRUE(holdsStreams(card.path()));
    EXPECT_FALSE(holdsStreams(card.path() + "/")) << "compared exactly";
    EXPECT_FALSE(utility_.removableDriveHasFilesContainingSubPath(card.path(), "/BDMV/STREAM", true,
                                                                  ".mxf"));
    EXPECT_TRUE(utility_.removableDriveHasFilesContainingSubPath(card.path(), "/BDMV/STR", false,
                                                                 std::nullopt));
}

TEST_F(DrivesTest, FaultsOfTheMountTableBecomeNeutralAnswers) {
    class Unreadable final : public platform::MountTable {
        [[nodiscard]] std::vector<platform::MountEntry> entries() const override {
            throw std::runtime_error("unreadable");
        }
    };
    services_->mountTable = std::make_shared<Unreadable>();
    services_->systemLog = std::make_shared<platform::RecordingSystemLog>();
    EXPECT_THAT(utility_.removableDrives(), IsEmpty());
    EXPECT_THAT(utility_.localVolumes(), IsEmpty());
    EXPECT_THAT(utility_.allMountedVolumes(), IsEmpty());
    EXPECT_THAT(utility_.allMountedVolumeURLs(), IsEmpty());
    EXPECT_FALSE(utility_.driveIsRemovable("/media/A"));
    EXPECT_FALSE(utility_.volumeMountedAtPath("/"));
}

TEST(DrivesOfThisMachine, RootIsMounted) {
    const QRXFileSystemUtility utility;
    EXPECT_TRUE(utility.volumeMountedAtPath("/"));
    EXPECT_TRUE(utility.volumeMountedAtPath("/proc"));
    EXPECT_THAT(utility.allMountedVolumeURLs(), testing::Contains("file:///"));
}

TEST(DrivesOfThisMachine, ImageMountedBelowMediaIsARemovableDrive) {
    const test::MountedImage card;
    if (!card.refusal().empty()) GTEST_SKIP() << card.refusal();
    const QRXFileSystemUtility utility;
    const FilePath& drive = card.mountPoint();
    EXPECT_THAT(utility.removableDrives(), testing::Contains(drive));
    EXPECT_THAT(utility.localVolumes(), testing::Contains(drive));
    EXPECT_THAT(utility.allMountedVolumes(), testing::Contains(drive));
    EXPECT_THAT(utility.allMountedVolumeURLs(), testing::Contains("file://" + drive + "/"));
    EXPECT_TRUE(utility.driveIsRemovable(drive));
    EXPECT_FALSE(utility.driveIsRemovable(drive + "/"));
    EXPECT_TRUE(utility.volumeMountedAtPath(drive + "/"));

    const auto holdsStreams = [&] {
        return utility.removableDriveHasFilesContainingSubPath(drive, "/BDMV/STREAM", true, ".mts");
    };
    EXPECT_FALSE(holdsStreams());
    std::filesystem::create_directories(drive + "/PRIVATE/AVCHD/BDMV/STREAM");
    std::ofstream(drive + "/PRIVATE/AVCHD/BDMV/STREAM/00000.MTS").put('\0');
    EXPECT_TRUE(holdsStreams());
}

}  // namespace
}  // namespace qrx
