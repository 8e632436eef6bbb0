#include <string>

#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/BlkidVolumeIdentity.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

TEST(BlkidVolumeIdentity, ReadsTheLinksOfTheDeviceManager) {
    const test::TemporaryFolder root;
    static_cast<void>(root.write("dev/sdz1"));
    static_cast<void>(root.link("dev/disk/by-uuid/1234-ABCD", "../../sdz1"));
    static_cast<void>(root.link("dev/disk/by-uuid/dangling", "../../sdq"));
    static_cast<void>(root.link("dev/disk/by-label/A\\x20CARD\\x2f", "../../sdz1"));
    static_cast<void>(root.write("proc/self/mountinfo",
                                 "30 21 8:2 / /media/ann/A\\040CARD rw - exfat /dev/sdz1 rw\n"
                                 "31 21 0:5 / /tmp rw - tmpfs tmpfs rw\n"));
    const BlkidVolumeIdentity identity(root.path());
    const auto volume = identity.describe("/media/ann/A CARD");
    ASSERT_TRUE(volume);
    EXPECT_EQ(volume->device, "/dev/sdz1");
    EXPECT_EQ(volume->fileSystemType, "exfat");
    EXPECT_EQ(volume->label, "A CARD/");
    EXPECT_EQ(volume->uuid, "1234-ABCD");
    EXPECT_FALSE(identity.describe("/tmp")) << "no device stands behind it";
    EXPECT_FALSE(identity.describe("/media/ann"));
    EXPECT_FALSE(identity.describe(""));
}

TEST(BlkidVolumeIdentity, NothingWithoutAMountTable) {
    const test::TemporaryFolder empty;
    EXPECT_FALSE(BlkidVolumeIdentity(empty.path()).describe("/"));
}

int statusOf(const std::string& tool, const std::vector<std::string>& arguments) {
    return processRunner().run({tool, arguments, StandardError::captured}).exitStatus;
}

TEST(BlkidVolumeIdentity, ReadsTheHeadersOfAMountedImage) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root may mount";
    const test::TemporaryFolder folder;
    const std::string image = folder / "card.img";
    const std::string mountPoint = folder.makeFolder("mounted");
    const std::string uuid = "0f2b7c1e-52a9-4d9e-9a6b-6f8f6f3f0a11";
    ASSERT_EQ(statusOf("/sbin/mkfs.ext4", {"-q", "-L", "A CARD", "-U", uuid, image, "4M"}), 0);
    if (statusOf("/bin/mount", {"-o", "loop,ro", image, mountPoint}) != 0) {
        GTEST_SKIP() << "no loop mounts here";
    }
    const auto volume = BlkidVolumeIdentity().describe(mountPoint);
    EXPECT_EQ(statusOf("/bin/umount", {mountPoint}), 0);
    ASSERT_TRUE(volume);
    EXPECT_EQ(volume->fileSystemType, "ext4");
    EXPECT_EQ(volume->label, "A CARD");
    EXPECT_EQ(volume->uuid, uuid);
}

}  // namespace
}  // namespace qrx::platform
