#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/ProcMountTable.h"
#include "support/MountedImage.h"
#include "unit/platform/SystemTree.h"

namespace qrx::platform {
namespace {

using test::SystemTree;

const std::string kUsbDisk = "pci0/usb1/1-1/host6/block/sdb";
const std::string kUsbDevice = "pci0/usb1/1-1/host6/6:0:0:0";
const std::string kSataDisk = "pci0/ata1/host0/block/sda";

/// A disk in the machine (sda) and a stick (sdb) that does not say it is removable.
class ProcMountTableTest : public testing::Test {
protected:
    ProcMountTableTest() {
        tree_.addDisk("8:0", kSataDisk, false);
        tree_.addPartition("8:1", kSataDisk, "sda1");
        tree_.attach(kSataDisk, "pci0/ata1/host0/0:0:0:0", "pci0/ata1/host0/0:0:0:0", "scsi");
        tree_.addDisk("8:16", kUsbDisk, false);
        tree_.addPartition("8:17", kUsbDisk, "sdb1");
        tree_.attach(kUsbDisk, kUsbDevice, "pci0/usb1/1-1", "usb");
    }

    /// The one mount of the table.
    [[nodiscard]] MountEntry onlyEntry() const {
        const std::vector<MountEntry> entries = table_.entries();
        EXPECT_EQ(entries.size(), 1U);
        return entries.empty() ? MountEntry() : entries.front();
    }

    SystemTree tree_;
    ProcMountTable table_{tree_.path()};
};

TEST_F(ProcMountTableTest, EntriesKeepTheKernelsOrder) {
    tree_.addMount("0:21", "/proc", "proc", "proc");
    tree_.addMount("8:1", "/", "ext4", "/dev/sda1");
    tree_.addMount("8:17", "/media/CARD\\0401", "exfat", "/dev/sdb1");
    const std::vector<MountEntry> entries = table_.entries();
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].mountPoint, "/proc");
    EXPECT_EQ(entries[0].fileSystemType, "proc");
    EXPECT_FALSE(entries[0].isBlockDevice);
    EXPECT_FALSE(entries[0].isRemovableDisk);
    EXPECT_EQ(entries[1].mountPoint, "/");
    EXPECT_TRUE(entries[1].isBlockDevice);
    EXPECT_FALSE(entries[1].isRemovableDisk);
    EXPECT_EQ(entries[2].mountPoint, "/media/CARD 1");
    EXPECT_EQ(entries[2].device, "/dev/sdb1");
    EXPECT_TRUE(entries[2].isBlockDevice);
    EXPECT_TRUE(entries[2].isRemovableDisk);
}

TEST_F(ProcMountTableTest, MissingTableIsEmpty) {
    EXPECT_TRUE(table_.entries().empty());
}

TEST_F(ProcMountTableTest, WholeDiskWithoutPartitions) {
    tree_.addMount("8:16", "/mnt/a", "vfat", "/dev/sdb");
    EXPECT_TRUE(onlyEntry().isRemovableDisk);
}

TEST_F(ProcMountTableTest, DiskThatSaysItIsRemovable) {
    tree_.addDisk("11:0", "pci0/ata2/block/sr0", true);
    tree_.addMount("11:0", "/mnt/disc", "iso9660", "/dev/sr0");
    EXPECT_TRUE(onlyEntry().isRemovableDisk);
}

TEST_F(ProcMountTableTest, PartitionIsAsRemovableAsItsDisk) {
    tree_.addDisk("8:32", "pci0/ata3/block/sdc", true);
    tree_.addPartition("8:33", "pci0/ata3/block/sdc", "sdc1");
    tree_.addMount("8:33", "/mnt/card", "vfat", "/dev/sdc1");
    EXPECT_TRUE(onlyEntry().isRemovableDisk);
}

TEST_F(ProcMountTableTest, EveryBusForCardsCounts) {
    for (const std::string& bus : {std::string("usb"), std::string("mmc"), std::string("firewire"),
                                   std::string("scsi"), std::string("usbfoo")}) {
        SCOPED_TRACE(bus);
        SystemTree tree;
        tree.addDisk("179:0", "soc/slot/card/block/mmcblk0", false);
        tree.addPartition("179:1", "soc/slot/card/block/mmcblk0", "mmcblk0p1");
        tree.attach("soc/slot/card/block/mmcblk0", "soc/slot/card", "soc/slot/card", bus);
        tree.addMount("179:1", "/mnt/sd", "exfat", "/dev/mmcblk0p1");
        const std::vector<MountEntry> entries = ProcMountTable(tree.path()).entries();
        ASSERT_EQ(entries.size(), 1U);
        EXPECT_EQ(entries[0].isRemovableDisk, bus == "usb" || bus == "mmc" || bus == "firewire");
    }
}

TEST_F(ProcMountTableTest, MappedDeviceIsAsRemovableAsWhatIsBelow) {
    tree_.addDisk("253:0", "virtual/block/dm-0", false);
    tree_.addDisk("253:1", "virtual/block/dm-1", false);
    tree_.addDisk("253:2", "virtual/block/dm-2", false);
    tree_.addSlave("virtual/block/dm-0", kUsbDisk + "/sdb1");
    tree_.addSlave("virtual/block/dm-1", "virtual/block/dm-0");
    tree_.addSlave("virtual/block/dm-2", kSataDisk + "/sda1");
    tree_.addMount("253:1", "/mnt/encrypted", "ext4", "/dev/mapper/card");
    tree_.addMount("253:2", "/home", "ext4", "/dev/mapper/home");
    const std::vector<MountEntry> entries = table_.entries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_TRUE(entries[0].isBlockDevice);
    EXPECT_TRUE(entries[0].isRemovableDisk);
    EXPECT_TRUE(entries[1].isBlockDevice);
    EXPECT_FALSE(entries[1].isRemovableDisk);
}

TEST_F(ProcMountTableTest, DevicesThatStandOnEachOtherDoNotHang) {
    tree_.addDisk("253:0", "virtual/block/dm-0", false);
    tree_.addDisk("253:1", "virtual/block/dm-1", false);
    tree_.addSlave("virtual/block/dm-0", "virtual/block/dm-1");
    tree_.addSlave("virtual/block/dm-1", "virtual/block/dm-0");
    tree_.addMount("253:0", "/mnt/a", "ext4", "/dev/dm-0");
    EXPECT_FALSE(onlyEntry().isRemovableDisk);
}

TEST_F(ProcMountTableTest, ImageIsAsRemovableAsTheDiskItLiesOn) {
    for (const char* loop : {"loop0", "loop1"}) {
        const std::string number = std::string("7:") + loop[4];
        tree_.addDisk(number, std::string("virtual/block/") + loop, false);
    }
    tree_.addPartition("259:0", "virtual/block/loop0", "loop0p1");
    tree_.write("sys/devices/virtual/block/loop0/loop/backing_file", "/mnt/stick/images/c.img\n");
    tree_.write("sys/devices/virtual/block/loop1/loop/backing_file", "/mnt/stickers/c.img\n");
    tree_.addMount("8:1", "/", "ext4", "/dev/sda1");
    tree_.addMount("8:17", "/mnt/stick", "exfat", "/dev/sdb1");
    tree_.addMount("259:0", "/mnt/a", "ext4", "/dev/loop0p1");
    tree_.addMount("7:1", "/mnt/b", "ext4", "/dev/loop1");
    const std::vector<MountEntry> entries = table_.entries();
    ASSERT_EQ(entries.size(), 4U);
    EXPECT_TRUE(entries[2].isBlockDevice);
    EXPECT_TRUE(entries[2].isRemovableDisk);
    EXPECT_TRUE(entries[3].isBlockDevice);
    EXPECT_FALSE(entries[3].isRemovableDisk);
}

TEST_F(ProcMountTableTest, ImageThatLiesInItselfDoesNotHang) {
    tree_.addDisk("7:0", "virtual/block/loop0", false);
    tree_.write("sys/devices/virtual/block/loop0/loop/backing_file", "/mnt/a/c.img\n");
    tree_.addMount("7:0", "/mnt/a", "ext4", "/dev/loop0");
    EXPECT_FALSE(onlyEntry().isRemovableDisk);
}

TEST_F(ProcMountTableTest, SourceTellsWhereTheNumberIsNoDevices) {
    tree_.addMount("0:45", "/mnt/stick", "btrfs", "/dev/sdb1");
    EXPECT_TRUE(onlyEntry().isBlockDevice);
    EXPECT_TRUE(onlyEntry().isRemovableDisk);
}

TEST_F(ProcMountTableTest, SourceMayBeALink) {
    tree_.link("dev/disk/by-uuid/1234-ABCD", "../../sdb1");
    tree_.addMount("0:45", "/mnt/stick", "fuseblk", "/dev/disk/by-uuid/1234-ABCD");
    EXPECT_TRUE(onlyEntry().isBlockDevice);
    EXPECT_TRUE(onlyEntry().isRemovableDisk);
}

TEST_F(ProcMountTableTest, DeviceInAFolderOfItsOwn) {
    tree_.addDisk("104:0", "pci0/block/cciss!c0d0", false);
    tree_.addMount("0:45", "/mnt/a", "btrfs", "/dev/cciss/c0d0");
    EXPECT_TRUE(onlyEntry().isBlockDevice);
}

TEST_F(ProcMountTableTest, SharesAndMemoryAreNoBlockDevices) {
    tree_.addMount("0:50", "/mnt/share", "cifs", "//server/share");
    tree_.addMount("0:51", "/mnt/nfs", "nfs4", "server:/dev/sda1");
    tree_.addMount("0:52", "/dev/shm", "tmpfs", "/dev/../../../etc");
    tree_.addMount("0:53", "/mnt/none", "overlay", "");
    for (const MountEntry& entry : table_.entries()) {
        EXPECT_FALSE(entry.isBlockDevice) << entry.mountPoint;
        EXPECT_FALSE(entry.isRemovableDisk) << entry.mountPoint;
    }
}

TEST(MountTableOfThisMachine, RootIsThere) {
    const std::vector<MountEntry> entries = ProcMountTable().entries();
    EXPECT_TRUE(std::any_of(entries.begin(), entries.end(),
                            [](const MountEntry& entry) { return entry.mountPoint == "/"; }));
}

TEST(MountTableOfThisMachine, LoopMountedImageIsABlockDevice) {
    const test::MountedImage image;
    if (!image.refusal().empty()) GTEST_SKIP() << image.refusal();
    const std::vector<MountEntry> entries = ProcMountTable().entries();
    const auto entry = std::find_if(entries.begin(), entries.end(), [&](const MountEntry& mount) {
        return mount.mountPoint == image.mountPoint();
    });
    ASSERT_NE(entry, entries.end());
    EXPECT_TRUE(entry->device.starts_with("/dev/loop")) << entry->device;
    EXPECT_EQ(entry->fileSystemType, "ext4");
    EXPECT_TRUE(entry->isBlockDevice);
}

}  // namespace
}  // namespace qrx::platform
