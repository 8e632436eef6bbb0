#include "distributed/DistributedArguments.h"
#include "distributed/QRXDistributedAppController.h"
#include "unit/distributed/DistributedFixture.h"

namespace qrx {
namespace {

using std::chrono::seconds;
using test::ControllerUnderTest;
using test::EndOfTest;

/// Answers nothing; stands for another process.
class SilentObject final : public platform::BusObject {
public:
    [[nodiscard]] std::vector<std::string_view> interfaceDescriptions() const override {
        return {};
    }
    [[nodiscard]] platform::ServedOn servedOn(std::string_view, std::string_view) const override {
        return platform::ServedOn::mainThread;
    }
    [[nodiscard]] platform::BusAnswer answer(const platform::BusCall&) override {
        throw std::runtime_error("not today");
    }
};

class ControllerTest : public test::DistributedTest {
protected:
    ControllerUnderTest controller;
};

TEST_F(ControllerTest, BeginsWithTheInitialValues) {
    EXPECT_FALSE(controller.accessed());
    EXPECT_FALSE(controller.vended());
    EXPECT_FALSE(controller.parentCantBeSelf());
    EXPECT_FALSE(controller.isBackgroundDaemon());
    EXPECT_EQ(controller.parentProcess(), kSelf);
    EXPECT_EQ(controller.launchedSubProcesses(), 0);
    EXPECT_EQ(controller.killTimer(), nullptr);
    EXPECT_EQ(controller.connectionName(), std::nullopt);
}

TEST_F(ControllerTest, OneTitleMakesAHost) {
    EXPECT_EQ(QRXDistributedAppController::validRunningAppTitlesForBackgroundDaemons(),
              std::vector<std::string>{"Quillfen"});
}

TEST_F(ControllerTest, FieldsHoldWhatTheyAreGiven) {
    controller.setAccessed(true);
    controller.setVended(true);
    controller.setParentCantBeSelf(true);
    controller.setIsBackgroundDaemon(true);
    controller.setParentProcess(7);
    controller.setLaunchedSubProcesses(3);
    controller.setConnectionName("a name");
    const auto timer = std::make_shared<KillTimer>(seconds{1}, seconds{5}, [] {});
    controller.setKillTimer(timer);
    EXPECT_TRUE(controller.accessed());
    EXPECT_TRUE(controller.vended());
    EXPECT_TRUE(controller.parentCantBeSelf());
    EXPECT_TRUE(controller.isBackgroundDaemon());
    EXPECT_EQ(controller.parentProcess(), 7);
    EXPECT_EQ(controller.launchedSubProcesses(), 3);
    EXPECT_EQ(controller.connectionName(), "a name");
    EXPECT_EQ(controller.killTimer(), timer);
}

// Vending.

TEST_F(ControllerTest, VendsUnderTheFirstArgument) {
    controller.vendAsDistributedObject();
    EXPECT_TRUE(controller.vended());
    EXPECT_EQ(controller.connectionName(), "MatcherConnection");
    EXPECT_NE(bus->rootObject("MatcherConnection"), nullptr);
    EXPECT_EQ(timesTerminated(), 0);
}

TEST_F(ControllerTest, VendsUnderTheEmptyNameToo) {
    services->arguments = {"/opt/QRXHDFileMatcher", ""};
    controller.vendAsDistributedObject();
    EXPECT_TRUE(controller.vended());
    EXPECT_EQ(controller.connectionName(), "");
    EXPECT_EQ(timesTerminated(), 0);
}

TEST_F(ControllerTest, ArgumentZeroIsTheProgram) {
    controller.vendAsDistributedObjectWithArgumentIndexForRegisteredName(0);
    EXPECT_EQ(controller.connectionName(), "/opt/QRXHDFileMatcher");
}

TEST_F(ControllerTest, EndsWithoutAName) {
    services->arguments = {"/opt/QRXHDFileMatcher"};
    controller.vendAsDistributedObject();
    EXPECT_EQ(timesTerminated(), 1);
    EXPECT_FALSE(controller.vended());
    EXPECT_EQ(controller.connectionName(), std::nullopt);
    EXPECT_TRUE(bus->lookUps.empty());
}

TEST_F(ControllerTest, EndsWithAnArgumentIndexPastTheEnd) {
    controller.vendAsDistributedObjectWithArgumentIndexForRegisteredName(2);
    EXPECT_EQ(timesTerminated(), 1);
}

TEST_F(ControllerTest, EndsWhenTheNameIsServed) {
    bus->serve("MatcherConnection", std::make_shared<SilentObject>());
    const auto first = bus->rootObject("MatcherConnection");
    controller.vendAsDistributedObject();
    EXPECT_EQ(timesTerminated(), 1);
    EXPECT_FALSE(controller.vended());
    EXPECT_EQ(bus->rootObject("MatcherConnection"), first);
}

TEST_F(ControllerTest, EndsWhenTheNameIsTakenAfterTheLookUp) {
    bus->takenMeanwhile = "MatcherConnection";
    controller.vendAsDistributedObject();
    EXPECT_EQ(timesTerminated(), 1);
    EXPECT_FALSE(controller.vended());
}

TEST_F(ControllerTest, KeptServingTheOwnNameAgainEnds) {
    controller.vendAsDistributedObject();
    controller.vendAsDistributedObject();
    EXPECT_EQ(timesTerminated(), 1);
}

TEST_F(ControllerTest, AFurtherNameLeadsToTheSameProcess) {
    controller.vendAsDistributedObject();
    controller.vendAsDistributedObjectWithRegisteredName("Second");
    EXPECT_EQ(controller.connectionName(), "Second");
    EXPECT_NE(bus->rootObject("MatcherConnection"), nullptr);
    EXPECT_NE(bus->rootObject("Second"), nullptr);
    EXPECT_EQ(timesTerminated(), 0);
}

TEST_F(ControllerTest, DropsAFaultWhileVending) {
    bus->reachable = false;
    controller.vendAsDistributedObject();
    EXPECT_EQ(timesTerminated(), 0);
    EXPECT_FALSE(controller.vended());
    EXPECT_EQ(controller.connectionName(), std::nullopt);
}

TEST_F(ControllerTest, TheMarkMeansThatTheParentCantBeSelf) {
    services->arguments.emplace_back("something");
    services->arguments.emplace_back(QRXDistributedParentMustNotBeSelfArgument);
    EXPECT_FALSE(controller.parentCantBeSelf());
    controller.vendAsDistributedObject();
    EXPECT_TRUE(controller.parentCantBeSelf());
}

TEST_F(ControllerTest, TheMarkAsTheNameCountsAsBoth) {
    services->arguments = {"program", std::string(QRXDistributedParentMustNotBeSelfArgument)};
    controller.vendAsDistributedObject();
    EXPECT_EQ(controller.connectionName(), QRXDistributedParentMustNotBeSelfArgument);
    EXPECT_TRUE(controller.parentCantBeSelf());
}

TEST_F(ControllerTest, WakingPutsFieldsBackAndVends) {
    controller.setAccessed(true);
    controller.setParentCantBeSelf(true);
    controller.setLaunchedSubProcesses(4);
    controller.setParentProcess(1);
    controller.setConnectionName("old");
    controller.setKillTimer(std::make_shared<KillTimer>(seconds{0}, seconds{5}, [] {}));
    controller.awakeFromNib();
    EXPECT_FALSE(controller.accessed());
    EXPECT_FALSE(controller.parentCantBeSelf());
    EXPECT_EQ(controller.launchedSubProcesses(), 0);
    EXPECT_EQ(controller.parentProcess(), kSelf);
    EXPECT_EQ(controller.killTimer(), nullptr);
    EXPECT_EQ(controller.connectionName(), "MatcherConnection");
    EXPECT_TRUE(controller.vended());
}

// Locking and ending.

TEST_F(ControllerTest, IsLockedOnceClaimed) {
    EXPECT_FALSE(controller.communicationLocked());
    controller.lockCommunication();
    EXPECT_TRUE(controller.communicationLocked());
    EXPECT_TRUE(controller.accessed());
    controller.lockCommunication();
    EXPECT_TRUE(controller.communicationLocked());
}

TEST_F(ControllerTest, KillSelfTerminates) {
    controller.killSelf();
    EXPECT_EQ(timesTerminated(), 1);
}

TEST_F(ControllerTest, KnowsItsProcess) {
    EXPECT_EQ(controller.distributedProcessIdentifier(), kSelf);
}

// Host watchdog.

TEST_F(ControllerTest, HostWatchLooksEveryFiveSeconds) {
    applications->start(100, "Quillfen");
    clock->mostSleeps = 3;
    EXPECT_THROW(controller.ensureValidAppIsRunning(), EndOfTest);
    EXPECT_EQ(clock->sleeps, (std::vector<platform::Clock::Duration>(3, seconds{5})));
    EXPECT_EQ(log->notices(), (std::vector<std::string>(3, "4242")));
    EXPECT_EQ(timesTerminated(), 0);
}

TEST_F(ControllerTest, HostWatchEndsTheProcessAtThePassThatFindsNoHost) {
    applications->start(100, "Quillfen");
    clock->mostSleeps = 3;
    clock->beforeSleep = [&](std::size_t pass) {
        EXPECT_EQ(timesTerminated(), pass <= 2 ? 0 : 1);
        if (pass == 2) applications->running.clear();
    };
    EXPECT_THROW(controller.ensureValidAppIsRunning(), EndOfTest);
}

TEST_F(ControllerTest, HostWatchEndsAtOnceWithoutAHost) {
    applications->start(100, "quillfen");  // the case counts
    clock->mostSleeps = 1;
    EXPECT_THROW(controller.ensureValidAppIsRunning(), EndOfTest);
    EXPECT_EQ(timesTerminated(), 1);
}

// Parent watch.

TEST_F(ControllerTest, ParentWatchGoesOnWhileTheParentLives) {
    controller.setParentProcess(77);
    psLists(77);
    clock->mostSleeps = 9;
    EXPECT_THROW(controller.ensureParentApplicationIsRunning(), EndOfTest);
    EXPECT_EQ(timesTerminated(), 0);
    EXPECT_EQ(clock->sleeps, (std::vector<platform::Clock::Duration>(9, seconds{5})));
}

TEST_F(ControllerTest, ParentWatchEndsTheProcessWhenTheParentIsGone) {
    controller.setParentProcess(77);
    psLists(77);
    clock->mostSleeps = 2;
    clock->beforeSleep = [&](std::size_t pass) {
        EXPECT_EQ(timesTerminated(), pass == 1 ? 0 : 1);
        psDoesNotList(77);
    };
    EXPECT_THROW(controller.ensureParentApplicationIsRunning(), EndOfTest);
}

TEST_F(ControllerTest, ParentWatchEndsTheProcessWhenPsCannotBeRun) {
    clock->mostSleeps = 1;
    EXPECT_THROW(controller.ensureParentApplicationIsRunning(), EndOfTest);
    EXPECT_EQ(timesTerminated(), 1);
}

TEST_F(ControllerTest, ParentWatchSeesANewParentAtTheNextPass) {
    controller.setParentProcess(77);
    psLists(77);
    psDoesNotList(78);
    clock->mostSleeps = 2;
    clock->beforeSleep = [&](std::size_t pass) {
        EXPECT_EQ(timesTerminated(), pass == 1 ? 0 : 1);
        controller.setParentProcess(78);
    };
    EXPECT_THROW(controller.ensureParentApplicationIsRunning(), EndOfTest);
}

TEST_F(ControllerTest, ParentThatMustNotBeSelfHasFivePassesToBeTold) {
    psLists(kSelf);
    controller.setParentCantBeSelf(true);
    clock->mostSleeps = 6;
    clock->beforeSleep = [&](std::size_t pass) {
        EXPECT_EQ(timesTerminated(), pass <= 5 ? 0 : 1) << pass;
    };
    EXPECT_THROW(controller.ensureParentApplicationIsRunning(), EndOfTest);
}

TEST_F(ControllerTest, ParentToldInTimeKeepsTheProcess) {
    psLists(kSelf);
    psLists(77);
    controller.setParentCantBeSelf(true);
    clock->mostSleeps = 9;
    clock->beforeSleep = [&](std::size_t pass) {
        if (pass == 5) controller.setParentProcess(77);
    };
    EXPECT_THROW(controller.ensureParentApplicationIsRunning(), EndOfTest);
    EXPECT_EQ(timesTerminated(), 0);
}

TEST_F(ControllerTest, ParentMayBeSelfUnlessMarked) {
    psLists(kSelf);
    clock->mostSleeps = 9;
    EXPECT_THROW(controller.ensureParentApplicationIsRunning(), EndOfTest);
    EXPECT_EQ(timesTerminated(), 0);
}

TEST_F(ControllerTest, KeptBackgroundFlagChangesNothing) {
    controller.setIsBackgroundDaemon(true);
    psLists(kSelf);
    clock->mostSleeps = 7;
    EXPECT_THROW(controller.ensureParentApplicationIsRunning(), EndOfTest);
    EXPECT_EQ(timesTerminated(), 0);
}

TEST_F(ControllerTest, SettingAParentStartsAWatch) {
    controller.setParentProcessId(77);
    EXPECT_EQ(controller.parentProcess(), 77);
    ASSERT_EQ(controller.detached.size(), 1U);
    psDoesNotList(77);
    clock->mostSleeps = 1;
    EXPECT_THROW(controller.detached.front()(), EndOfTest);
    EXPECT_EQ(timesTerminated(), 1);
}

TEST_F(ControllerTest, EachParentSetStartsAWatchOfItsOwn) {
    controller.setParentProcessId(77);
    controller.setParentProcessId(77);
    controller.setParentProcessId(-1);
    EXPECT_EQ(controller.detached.size(), 3U);
    EXPECT_EQ(controller.parentProcess(), -1);
}

TEST_F(ControllerTest, SettingItselfAsParentStartsNoWatch) {
    controller.setParentProcess(77);
    controller.setParentProcessId(kSelf);
    EXPECT_EQ(controller.parentProcess(), kSelf);
    EXPECT_TRUE(controller.detached.empty());
}

// Kill timer.

TEST_F(ControllerTest, KeptKillTimerRunsTheParentWatchOnTheCaller) {
    psLists(kSelf);
    clock->mostSleeps = 2;
    EXPECT_THROW(controller.configureKillTimer(), EndOfTest);
    const auto timer = controller.killTimer();
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->firstFiring(), seconds{5});
    EXPECT_EQ(timer->interval(), seconds{5});
    EXPECT_FALSE(timer->repeats());
    EXPECT_TRUE(timer->isValid());
    EXPECT_EQ(clock->sleeps.size(), 2U);
}

TEST_F(ControllerTest, KillTimerReplacesTheOneBefore) {
    psLists(kSelf);
    const auto before = std::make_shared<KillTimer>(seconds{0}, seconds{5}, [] {});
    controller.setKillTimer(before);
    clock->mostSleeps = 1;
    EXPECT_THROW(controller.configureKillTimer(), EndOfTest);
    EXPECT_FALSE(before->isValid());
    EXPECT_NE(controller.killTimer(), before);
}

TEST(KillTimer, FiresOnceAndOnlyWhileValid) {
    int fired = 0;
    KillTimer timer(seconds{5}, seconds{5}, [&] { ++fired; });
    timer.fire();
    EXPECT_EQ(fired, 1);
    EXPECT_FALSE(timer.isValid());
    timer.fire();
    EXPECT_EQ(fired, 1);
}

// Starting further services.

TEST_F(ControllerTest, TellsTheChildItsParent) {
    ControllerUnderTest child;
    runner->answer("/opt/Scanner.app/Contents/MacOS/Scanner", {"ChildName"}, {});
    bus->onLookUp = [&, looks = 0](std::string_view) mutable {
        if (++looks == 2) {
            bus->serve("ChildName", std::make_shared<ExportedObject>(child.interfaceDescriptions(),
                                                                     child.exportedMethods()));
        }
    };
    child.setParentProcess(1);
    const auto proxy =
        controller.launchDistributedApplicationAtPath("/opt/Scanner.app", "ChildName");
    ASSERT_TRUE(proxy.has_value());
    EXPECT_EQ(proxy->address().connectionName, "ChildName");
    EXPECT_EQ(proxy->protocolForProxy(), kQRXDistributedAppCommunicationProtocol.interfaceName);
    EXPECT_EQ(child.parentProcess(), kSelf);
    EXPECT_EQ(controller.launchedSubProcesses(), 1);
    ASSERT_EQ(runner->launched().size(), 1U);
    EXPECT_EQ(runner->launched()[0].arguments, std::vector<std::string>{"ChildName"});
}

TEST_F(ControllerTest, ChildThatRefusesItsParentStillCounts) {
    bus->serve("ChildName", std::make_shared<SilentObject>());
    runner->answer("/opt/Scanner.app/Contents/MacOS/Scanner", platform::ProcessResult{});
    const auto proxy = controller.launchDistributedApplicationAtPathParentAppCantBeSelf(
        "/opt/Scanner.app", "ChildName", true);
    EXPECT_TRUE(proxy.has_value());
    EXPECT_EQ(controller.launchedSubProcesses(), 1);
    EXPECT_EQ(log->notices(), std::vector<std::string>{"not today"});
    EXPECT_EQ(runner->launched().at(0).arguments,
              (std::vector<std::string>{"ChildName",
                                        std::string(QRXDistributedParentMustNotBeSelfArgument)}));
}

TEST_F(ControllerTest, ChildThatDoesNotRegisterDoesNotCount) {
    runner->answer("/opt/Scanner.app/Contents/MacOS/Scanner", platform::ProcessResult{});
    EXPECT_FALSE(
        controller.launchDistributedApplicationAtPath("/opt/Scanner.app", "X").has_value());
    EXPECT_EQ(controller.launchedSubProcesses(), 0);
}

}  // namespace
}  // namespace qrx
