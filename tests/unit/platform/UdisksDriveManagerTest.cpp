#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/linux/UdisksDriveManager.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

/// The stand-in on its own bus; gone at the end.
class StandIn {
public:
    StandIn() {
        processRunner().launch({QRX_PYTHON, {QRX_UDISKS_STAND_IN, folder_.path()}});
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!std::filesystem::exists(folder_ / "address")) {
            if (std::chrono::steady_clock::now() > giveUp) {
                throw std::runtime_error("the stand-in did not start");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
    ~StandIn() { static_cast<void>(folder_.write("stop")); }
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;

    [[nodiscard]] std::string address() const { return test::fileContents(folder_ / "address"); }
    [[nodiscard]] std::string calls() const {
        const std::string path = folder_ / "calls";
        return std::filesystem::exists(path) ? test::fileContents(path) : std::string();
    }

private:
    test::TemporaryFolder folder_;
};

TEST(UdisksDriveManager, UnmountsThenEjects) {
    const StandIn keeper;
    UdisksDriveManager(keeper.address()).eject("/dev/sdb1");
    EXPECT_EQ(keeper.calls(), "sdb1 Unmount\nReader Eject\n");
}

TEST(UdisksDriveManager, RenamesAndTellsOfARefusal) {
    const StandIn keeper;
    UdisksDriveManager manager(keeper.address());
    manager.rename("/dev/sdb1", "A CAM");
    EXPECT_EQ(keeper.calls(), "sdb1 SetLabel A CAM\n");
    EXPECT_THROW(manager.rename("/dev/sdb1", "refuse"), std::runtime_error);
    EXPECT_THROW(manager.rename("/dev/sdb1", "not utf-8 \xff"), std::runtime_error);
}

TEST(UdisksDriveManager, NothingHappensForAnUnknownDevice) {
    const StandIn keeper;
    UdisksDriveManager manager(keeper.address());
    manager.eject("/dev/sdz9");
    manager.rename("/dev/sdz9", "A");
    EXPECT_EQ(keeper.calls(), "");
}

TEST(UdisksDriveManager, NothingHappensWithoutABusOrAKeeper) {
    UdisksDriveManager nobody("unix:path=/nonexistent/bus");
    EXPECT_NO_THROW(nobody.eject("/dev/sdb1"));
    EXPECT_NO_THROW(nobody.rename("/dev/sdb1", "A"));
}

}  // namespace
}  // namespace qrx::platform
