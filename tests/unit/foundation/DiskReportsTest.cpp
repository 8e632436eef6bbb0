#include <string>

#include <gtest/gtest.h>

#include "foundation/DiskReports.h"
#include "foundation/Text.h"

namespace qrx {
namespace {

std::string oneLine(const std::string& report) {
    return replaceAll(report, "\n", "");
}

/// A report of the tool itself, newlines removed.
const std::string kDiskutilList = oneLine(R"(/dev/disk0
   #:                       TYPE NAME                    SIZE       IDENTIFIER
   0:      GUID_partition_scheme                        *500.1 GB   disk0
   1:                        EFI                         209.7 MB   disk0s1
   2:                  Apple_HFS Macintosh HD            499.2 GB   disk0s2
/dev/disk1
   #:                       TYPE NAME                    SIZE       IDENTIFIER
   0:     FDisk_partition_scheme                        *32.0 GB    disk1
   1:                 DOS_FAT_32 NO NAME                 32.0 GB    disk1s1
/dev/disk12
   #:                       TYPE NAME                    SIZE       IDENTIFIER
   0:     FDisk_partition_scheme                        *64.0 GB    disk12
   1:                 DOS_FAT_32 CARD                    64.0 GB    disk12s1
/dev/disk4
   #:                       TYPE NAME                    SIZE       IDENTIFIER
   0:     FDisk_partition_scheme                        *64.0 GB    disk4
   1:                 DOS_FAT_32 FAR                     64.0 GB    disk4s1
)");

TEST(DiskNumberInReport, IsThatOfThePieceThatNamesTheVolume) {
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes/NO NAME"), 1U);
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes/Macintosh HD"), 0U);
}

TEST(DiskNumberInReport, ZeroForAPathThatIsNotBelowVolumes) {
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/media/NO NAME"), 0U);
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "Volumes/NO NAME"), 0U);
    EXPECT_EQ(diskNumberInReport(kDiskutilList, ""), 0U);
}

TEST(DiskNumberInReport, ZeroForVolumesAlone) {
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes"), 0U);
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes/"), 0U);
}

TEST(DiskNumberInReport, ZeroForAVolumeThatIsNotListed) {
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes/OTHER"), 0U);
    EXPECT_EQ(diskNumberInReport("", "/Volumes/NO NAME"), 0U);
}

TEST(DiskNumberInReport, NamesAreComparedWithCase) {
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes/no name"), 0U);
}

TEST(DiskNumberInReport, KeptOnlyTheFirstDigitIsRead) {
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes/CARD"), 1U);  // it is disk 12
}

TEST(DiskNumberInReport, KeptZeroWhenGreaterThanTheNumberOfComponents) {
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes/FAR"), 0U);  // disk 4, 3 components
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes/FAR/CLIPS"), 4U);
    EXPECT_EQ(diskNumberInReport(kDiskutilList, "/Volumes/FAR/"), 4U);  // a final "/" counts
}

TEST(DiskListReport, IsReadByTheSameRules) {
    const std::string report = diskListReport({
        {"nvme0n1", 512'000'000'000, {{"nvme0n1p1", "/", 1}}},
        {"sda", 64'000'000'000, {{"sda1", "CARD", 63'900'000'000}, {"sda2", "", 1'000'000}}},
    });
    EXPECT_EQ(diskNumberInReport(oneLine(report), "/Volumes/CARD"), 1U);
    EXPECT_TRUE(contains(report, "/dev/disk1\n"));
    EXPECT_TRUE(contains(report, " CARD "));
    EXPECT_TRUE(contains(report, "63.9 GB   disk1s1\n"));
    EXPECT_TRUE(contains(report, "1.0 MB   disk1s2\n"));
}

TEST(DiskListReport, EmptyWithoutDisks) {
    EXPECT_EQ(diskListReport({}), "");
}

/// A report of the tool itself for two disks, five rows.
const std::string kIostat = oneLine(R"(              disk0               disk1 
    KB/t  tps  MB/s     KB/t  tps  MB/s 
   20.06   11  0.22    64.00  100  6.25 
    8.00    2  0.02   128.00  200 25.00 
    0.00    0  0.00   128.00  200 25.00 
    4.00    1  0.00   128.00  200 25.00 
    0.00    0  0.00   128.00  150 18.75 
)");

TEST(ThroughputInReport, IsTheMeanOfTheDisksColumn) {
    const auto rate = throughputInReport(kIostat, 1);
    ASSERT_TRUE(rate);
    EXPECT_DOUBLE_EQ(*rate, (6.25 + 25 + 25 + 25 + 18.75) / 5);
}

TEST(ThroughputInReport, NothingForAnIdleDisk) {
    EXPECT_FALSE(throughputInReport(kIostat, 0));
}

TEST(ThroughputInReport, KeptFirstColumnWhenThereAreFewerDisks) {
    const auto rate = throughputInReport(kIostat, 7);  // the KB/t of disk0
    ASSERT_TRUE(rate);
    EXPECT_DOUBLE_EQ(*rate, (20.06 + 8 + 0 + 4 + 0) / 5);
}

TEST(ThroughputInReport, NothingInWhatIsNoReport) {
    EXPECT_FALSE(throughputInReport("", 0));
    EXPECT_FALSE(throughputInReport("   ", 0));
    EXPECT_FALSE(throughputInReport("12.5 99", 0));  // values without labels
    EXPECT_FALSE(throughputInReport("disk0 KB/t tps MB/s", 0));
}

TEST(ThroughputInReport, ExactlyOneCounts) {
    EXPECT_EQ(throughputInReport("disk0 KB/t tps MB/s 1 1 1.00", 0), 1.0);
    EXPECT_FALSE(throughputInReport("disk0 KB/t tps MB/s 1 1 0.99", 0));
}

TEST(TrafficReport, IsReadByTheSameRules) {
    constexpr std::uint64_t kMegabyte = 1U << 20U;
    const std::vector<TrafficRow> rows{
        {10, {{10, 10 * kMegabyte}, {0, 0}}},
        {1, {{40, 4 * kMegabyte}, {1000, 2000 * kMegabyte}}},
    };
    const std::string report = trafficReport(rows);
    EXPECT_EQ(throughputInReport(oneLine(report), 0), 2.5);
    EXPECT_EQ(throughputInReport(oneLine(report), 1), 1000.0);
    EXPECT_TRUE(contains(report, " 1024.00    1  1.00 ")) << report;
}

TEST(TrafficReport, EmptyWithoutDisksOrRows) {
    EXPECT_EQ(trafficReport({}), "");
    EXPECT_EQ(trafficReport({{1.0, {}}}), "");
}

}  // namespace
}  // namespace qrx
