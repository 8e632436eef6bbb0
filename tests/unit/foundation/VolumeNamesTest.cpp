#include <string>

#include <gtest/gtest.h>

#include "foundation/VolumeNames.h"

namespace qrx {
namespace {

using platform::MountEntry;

MountEntry mounted(const char* mountPoint, const char* device = "/dev/sda1") {
    MountEntry entry;
    entry.mountPoint = mountPoint;
    entry.device = device;
    return entry;
}

struct PathCase {
    const char* name;
    const char* path;
    const char* expected;
};

constexpr PathCase kPaths[] = {
    {"AlreadyThere", "/Volumes/CARD/A", "/Volumes/CARD/A"},
    {"MediaOfAUser", "/media/ann/CARD", "/Volumes/CARD"},
    {"BelowMediaOfAUser", "/media/ann/CARD/PRIVATE/X.MTS", "/Volumes/CARD/PRIVATE/X.MTS"},
    {"RunMedia", "/run/media/ann/NO NAME/A", "/Volumes/NO NAME/A"},
    {"Mnt", "/mnt/CARD/A", "/Volumes/CARD/A"},
    {"MountedRightBelowMedia", "/media/EOS/DCIM", "/Volumes/EOS/DCIM"},
    {"FolderOfAUserAlone", "/media/ann", "/media/ann"},
    {"MntAlone", "/mnt", "/mnt"},
    {"MntWithSlash", "/mnt/", "/mnt/"},
    {"RunMediaOfAUserAlone", "/run/media/ann", "/run/media/ann"},
    {"Elsewhere", "/home/ann/CARD", "/home/ann/CARD"},
    {"Relative", "media/ann/CARD", "media/ann/CARD"},
    {"Root", "/", "/"},
    {"Empty", "", ""},
};

class VolumesPath : public testing::TestWithParam<PathCase> {};

TEST_P(VolumesPath, ReadsDesktopFoldersAsVolumes) {
    const std::vector<MountEntry> mounts{mounted("/media/EOS")};
    EXPECT_EQ(volumesPath(GetParam().path, mounts), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, VolumesPath, testing::ValuesIn(kPaths),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(VolumeNamed, IsTheMountThatHostsCallSo) {
    const std::vector<MountEntry> mounts{
        mounted("/", "/dev/sda1"),
        mounted("/media/ann/CARD", "/dev/sdb1"),
        mounted("/run/media/ann/CARD 2", "/dev/sdc1"),
    };
    ASSERT_TRUE(volumeNamed("CARD", mounts));
    EXPECT_EQ(volumeNamed("CARD", mounts)->device, "/dev/sdb1");
    EXPECT_EQ(volumeNamed("CARD 2", mounts)->device, "/dev/sdc1");
    EXPECT_FALSE(volumeNamed("CAR", mounts));
    EXPECT_FALSE(volumeNamed("", mounts));
}

TEST(VolumeNamed, TheLatestMountCounts) {
    const std::vector<MountEntry> mounts{
        mounted("/media/ann/CARD", "/dev/sdb1"),
        mounted("/media/ann/CARD", "/dev/sdd1"),
    };
    EXPECT_EQ(volumeNamed("CARD", mounts)->device, "/dev/sdd1");
}

}  // namespace
}  // namespace qrx
