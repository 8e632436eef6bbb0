#include "distributed/QRXDistributedProxy.h"
#include "unit/distributed/DistributedFixture.h"

namespace qrx {
namespace {

using platform::BusError;
using platform::BusFault;
using std::chrono::seconds;
using test::ControllerUnderTest;

class ProxyTest : public test::DistributedTest {
protected:
    ProxyTest() { serveFar(); }

    void serveFar() {
        bus->serve("Far", std::make_shared<ExportedObject>(far.interfaceDescriptions(),
                                                           far.exportedMethods()));
    }
    [[nodiscard]] QRXDistributedProxy proxy() {
        return QRXDistributedProxy(bus->rootProxy("Far").value());
    }

    ControllerUnderTest far;
};

template <class Call>
BusFault faultOf(Call&& call) {
    try {
        call();
    } catch (const BusError& error) {
        return error.fault();
    }
    throw std::logic_error("the call raised nothing");
}

TEST_F(ProxyTest, CallsTheCommunicationProtocol) {
    QRXDistributedProxy there = proxy();
    EXPECT_EQ(there.distributedProcessIdentifier(), kSelf);
    EXPECT_FALSE(there.communicationLocked());
    there.lockCommunication();
    EXPECT_TRUE(there.communicationLocked());
    EXPECT_TRUE(far.accessed());
    there.setParentProcessId(-5);
    EXPECT_EQ(far.parentProcess(), -5);
    there.vendAsDistributedObjectWithRegisteredName("Second");
    EXPECT_EQ(far.connectionName(), "Second");
    EXPECT_EQ(timesTerminated(), 0);
    there.killSelf();
    EXPECT_EQ(timesTerminated(), 1);
}

TEST_F(ProxyTest, AbsentNameTravelsAsTheEmptyText) {
    proxy().vendAsDistributedObjectWithRegisteredName(std::nullopt);
    EXPECT_EQ(bus->sent.back().message.arguments, platform::BusValues{""});
    EXPECT_EQ(timesTerminated(), 1);
    EXPECT_EQ(far.connectionName(), std::nullopt);
}

TEST_F(ProxyTest, VendingAnewServesTheProcessesArgument) {
    proxy().vendAsDistributedObject();
    EXPECT_EQ(far.connectionName(), "MatcherConnection");
}

TEST_F(ProxyTest, DoesNotWaitForWhatNeverReturns) {
    QRXDistributedProxy there = proxy();
    there.ensureParentApplicationIsRunning();
    there.configureKillTimer();
    ASSERT_EQ(bus->sent.size(), 2U);
    EXPECT_EQ(bus->sent[0].message.member, "ensureParentApplicationIsRunning");
    EXPECT_EQ(bus->sent[1].message.member, "configureKillTimer");
    EXPECT_EQ(bus->sent[1].message.interfaceName,
              "com.quillfen.QRXDistributedAppCommunicationProtocol");
}

TEST_F(ProxyTest, LaunchesThroughTheOtherProcess) {
    runner->answer("/opt/Scanner.app/Contents/MacOS/Scanner", platform::ProcessResult{});
    ControllerUnderTest child;
    bus->serve("Child", std::make_shared<ExportedObject>(child.interfaceDescriptions(),
                                                         child.exportedMethods()));
    const auto found = proxy().launchDistributedApplicationAtPathParentAppCantBeSelf(
        "/opt/Scanner.app", "Child", true);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->address(), bus->rootProxy("Child"));
    EXPECT_EQ(far.launchedSubProcesses(), 1);
    EXPECT_EQ(runner->launched().at(0).arguments.size(), 2U);
    EXPECT_TRUE(
        proxy().launchDistributedApplicationAtPath("/opt/Scanner.app", "Child").has_value());
    EXPECT_FALSE(proxy().launchDistributedApplicationAtPath("/opt/Scanner.app", "No").has_value());
}

TEST_F(ProxyTest, CallsWithTheGivenTimeLimit) {
    QRXDistributedProxy there = proxy();
    static_cast<void>(there.communicationLocked());
    there.setTimeLimit(seconds{7});
    static_cast<void>(there.communicationLocked());
    ASSERT_EQ(bus->sent.size(), 2U);
    EXPECT_EQ(bus->sent[0].timeLimit, platform::ServiceBus::kNoTimeLimit);
    EXPECT_EQ(bus->sent[1].timeLimit, seconds{7});
}

TEST_F(ProxyTest, CallsMembersOfItsProtocol) {
    QRXDistributedProxy there = proxy();
    there.setProtocolForProxy(kQRXDistributedAppCommunicationProtocol);
    EXPECT_EQ(there.call("distributedProcessIdentifier"), platform::BusValues{kSelf});
    EXPECT_EQ(faultOf([&] { static_cast<void>(there.call("unknown")); }), BusFault::refused);
}

TEST_F(ProxyTest, VanishedServiceIsAnError) {
    QRXDistributedProxy there = proxy();
    bus->vanish("Far");
    EXPECT_EQ(faultOf([&] { there.lockCommunication(); }), BusFault::vanished);
    EXPECT_EQ(faultOf([&] { there.configureKillTimer(); }), BusFault::vanished);
    serveFar();  // another process under the same name is another process
    EXPECT_EQ(faultOf([&] { there.lockCommunication(); }), BusFault::vanished);
    EXPECT_FALSE(far.accessed());
}

TEST_F(ProxyTest, AnswerOfAnotherTypeIsAnError) {
    bus->serve(
        "Odd",
        std::make_shared<ExportedObject>(
            std::vector<std::string_view>{},
            std::vector<BusMethod>{{kQRXDistributedAppCommunicationProtocol.interfaceName,
                                    "communicationLocked", platform::ServedOn::mainThread,
                                    [](const platform::BusCall&) {
                                        return platform::BusAnswer(platform::BusValues{"yes"});
                                    }}}));
    const QRXDistributedProxy odd(bus->rootProxy("Odd").value());
    EXPECT_EQ(faultOf([&] { static_cast<void>(odd.communicationLocked()); }), BusFault::refused);
}

}  // namespace
}  // namespace qrx
