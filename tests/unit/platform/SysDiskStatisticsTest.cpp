#include <gtest/gtest.h>

#include "platform/linux/SysDiskStatistics.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

/// A machine with a built-in disk, a card in its reader, a loop image, and things that are no
/// disks.
class SysDiskStatisticsTest : public testing::Test {
protected:
    SysDiskStatisticsTest() {
        disk("sda", "8:0", 2000);
        part("sda", "sda1", "8:1", 500);
        part("sda", "sda10", "8:10", 300);
        part("sda", "sda2", "8:2", 400);
        disk("nvme0n1", "259:0", 8000);
        disk("loop0", "7:0", 100);
        disk("loop1", "7:1", 0);
        disk("ram0", "1:0", 100);
        disk("zram0", "252:0", 100);
        static_cast<void>(root_.write("proc/self/mountinfo",
                                      "21 1 259:0 / / rw - ext4 /dev/nvme0n1 rw\n"
                                      "30 21 8:2 / /media/ann/A\\040CARD rw - exfat /dev/sda2 rw\n"
                                      "31 21 7:0 / /media/i rw - ext4 /dev/loop0 rw\n"));
        static_cast<void>(root_.write("proc/diskstats",
                                      "   8       0 sda 10 1 2000 5 20 2 4000 6 0 7 8 0 0 0 0\n"
                                      "   8       1 sda1 1 0 1 0 0 0 0 0 0 0 0\n"
                                      " 259       0 nvme0n1 7 0 70 0 3 0 30 0 0 0 0\n"
                                      "nonsense\n"));
        static_cast<void>(root_.write("proc/uptime", "12345.67 54321.00\n"));
    }

    void disk(const std::string& name, const std::string& number, int sectors) {
        static_cast<void>(root_.write("sys/block/" + name + "/dev", number + "\n"));
        static_cast<void>(
            root_.write("sys/block/" + name + "/size", std::to_string(sectors) + "\n"));
        static_cast<void>(root_.makeFolder("sys/block/" + name + "/queue"));
    }
    void part(const std::string& of, const std::string& name, const std::string& number,
              int sectors) {
        const std::string folder = "sys/block/" + of + "/" + name;
        static_cast<void>(root_.write(folder + "/partition", "1\n"));
        static_cast<void>(root_.write(folder + "/dev", number + "\n"));
        static_cast<void>(root_.write(folder + "/size", std::to_string(sectors) + "\n"));
    }

    test::TemporaryFolder root_;
    SysDiskStatistics statistics_{root_.path()};
};

TEST_F(SysDiskStatisticsTest, DisksComeInNaturalOrderWithoutMemoryAndUnusedLoops) {
    const std::vector<Disk> disks = statistics_.disks();
    ASSERT_EQ(disks.size(), 3U);
    EXPECT_EQ(disks[0].device, "loop0");
    EXPECT_EQ(disks[1].device, "nvme0n1");
    EXPECT_EQ(disks[2].device, "sda");
    EXPECT_EQ(disks[2].bytes, 2000U * 512U);
}

TEST_F(SysDiskStatisticsTest, PartsCarryTheNameOfTheirVolume) {
    const std::vector<DiskPart> parts = statistics_.disks()[2].parts;
    ASSERT_EQ(parts.size(), 3U);
    EXPECT_EQ(parts[0].device, "sda1");
    EXPECT_EQ(parts[0].volumeName, "");
    EXPECT_EQ(parts[1].device, "sda2");
    EXPECT_EQ(parts[1].volumeName, "A CARD");
    EXPECT_EQ(parts[1].bytes, 400U * 512U);
    EXPECT_EQ(parts[2].device, "sda10");
}

TEST_F(SysDiskStatisticsTest, ADiskWithoutPartitionsIsItsOwnPart) {
    const std::vector<Disk> disks = statistics_.disks();
    ASSERT_EQ(disks[0].parts.size(), 1U);
    EXPECT_EQ(disks[0].parts[0].volumeName, "i");
    EXPECT_EQ(disks[1].parts[0].volumeName, "") << "the root has no name";
}

TEST_F(SysDiskStatisticsTest, TrafficIsBothWaysTogetherInTheOrderOfDisks) {
    const std::vector<DiskTraffic> traffic = statistics_.traffic();
    ASSERT_EQ(traffic.size(), 3U);
    EXPECT_EQ(traffic[0].bytes, 0U) << "no figures";
    EXPECT_EQ(traffic[1].transfers, 10U);
    EXPECT_EQ(traffic[1].bytes, 100U * 512U);
    EXPECT_EQ(traffic[2].transfers, 30U);
    EXPECT_EQ(traffic[2].bytes, 6000U * 512U);
}

TEST_F(SysDiskStatisticsTest, TimeSinceTheStart) {
    EXPECT_DOUBLE_EQ(statistics_.secondsSinceStart(), 12345.67);
}

TEST(SysDiskStatistics, AnEmptySystemHasNoDisks) {
    const test::TemporaryFolder empty;
    const SysDiskStatistics statistics(empty.path());
    EXPECT_TRUE(statistics.disks().empty());
    EXPECT_TRUE(statistics.traffic().empty());
    EXPECT_GT(statistics.secondsSinceStart(), 0);
}

TEST(SysDiskStatistics, ThisMachineCanBeRead) {
    const SysDiskStatistics statistics;
    EXPECT_EQ(statistics.disks().size(), statistics.traffic().size());
    EXPECT_GT(statistics.secondsSinceStart(), 1);
}

}  // namespace
}  // namespace qrx::platform
