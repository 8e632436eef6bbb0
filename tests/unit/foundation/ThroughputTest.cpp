#include <chrono>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/QRXFileSystemUtility.h"
#include "foundation/Throughput.h"
#include "platform/fake/FakeClock.h"
#include "platform/fake/FakeDisks.h"
#include "platform/fake/FakeMountTable.h"
#include "platform/ports/Services.h"

namespace qrx {
namespace {

using testing::Each;
using testing::SizeIs;

constexpr std::uint64_t kMegabyte = 1U << 20U;

class ThroughputTest : public testing::Test {
protected:
    ThroughputTest() {
        services_->mountTable = mounts_;
        services_->diskStatistics = disks_;
        services_->clock = clock_;
        mounts_->mountCard("/media/ann/CARD");
        disks_->present = {{"sda", 1000, {{"sda1", "", 1000}}},
                           {"sdb", 2000, {{"sdb1", "CARD", 2000}}}};
        disks_->moved = {{0, 0}, {1000, 1000 * 30 * kMegabyte}};  // 30 MB/s since the start
        disks_->perReading = {{0, 0}, {40, 40 * kMegabyte}};
    }

    platform::ScopedServices services_;
    std::shared_ptr<platform::FakeMountTable> mounts_ =
        std::make_shared<platform::FakeMountTable>();
    std::shared_ptr<platform::FakeDiskStatistics> disks_ =
        std::make_shared<platform::FakeDiskStatistics>();
    std::shared_ptr<platform::FakeClock> clock_ = std::make_shared<platform::FakeClock>();
    QRXFileSystemUtility utility_;
};

TEST_F(ThroughputTest, DiskNumberOfAMountedVolume) {
    EXPECT_EQ(utility_.diskNumberForPath("/media/ann/CARD/PRIVATE"), 1U);
    EXPECT_EQ(utility_.diskNumberForPath("/Volumes/CARD"), 1U);
    EXPECT_EQ(utility_.diskNumberForPath("/media/ann/OTHER"), 0U);
    EXPECT_EQ(utility_.diskNumberForPath("/home/ann/CARD"), 0U);
}

TEST_F(ThroughputTest, IsTheMeanOfFiveReadings) {
    const auto rate = utility_.systemOffloadRateForPathInMegaBytesPerSecond("/media/ann/CARD");
    ASSERT_TRUE(rate);
    // 30 since the start, and four seconds of which the first shows the step made before it
    EXPECT_NEAR(*rate, (30 + 4 * 40.0) / 5, 0.1);
    EXPECT_THAT(clock_->sleeps(), SizeIs(4));
    EXPECT_THAT(clock_->sleeps(), Each(std::chrono::seconds(1)));
}

TEST_F(ThroughputTest, NothingForAnIdleDisk) {
    disks_->moved[1] = {0, 0};
    disks_->perReading[1] = {0, 0};
    EXPECT_FALSE(utility_.systemOffloadRateForPathInMegaBytesPerSecond("/media/ann/CARD"));
}

TEST_F(ThroughputTest, NothingWithoutDisksAndWithoutWaiting) {
    disks_->moved.clear();
    EXPECT_FALSE(utility_.systemOffloadRateForPathInMegaBytesPerSecond("/media/ann/CARD"));
    EXPECT_THAT(clock_->sleeps(), SizeIs(0));
}

}  // namespace
}  // namespace qrx
