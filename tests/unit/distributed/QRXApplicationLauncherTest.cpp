#include "distributed/DistributedArguments.h"
#include "distributed/QRXApplicationLauncher.h"
#include "unit/distributed/DistributedFixture.h"

namespace qrx {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class LauncherTest : public test::DistributedTest {
protected:
    /// The executable at `path` can be started.
    void allow(const std::string& path) const { runner->answer(path, platform::ProcessResult{}); }
    [[nodiscard]] std::shared_ptr<platform::BusObject> anyObject() {
        return std::make_shared<ExportedObject>(std::vector<std::string_view>{},
                                                std::vector<BusMethod>{});
    }
    [[nodiscard]] platform::ProcessRequest launched() const { return runner->launched().at(0); }

    QRXApplicationLauncher launcher;
};

using Arguments = std::vector<std::string>;

TEST_F(LauncherTest, BeginsWithNoLaunch) {
    EXPECT_EQ(launcher.launchCounter(), 0);
    launcher.setLaunchCounter(5'000'000'000);
    EXPECT_EQ(launcher.launchCounter(), 5'000'000'000);
}

TEST_F(LauncherTest, StartsTheExecutableOfTheBundle) {
    allow("/opt/Scanner.app/Contents/MacOS/Scanner");
    EXPECT_TRUE(launcher.launchApplicationAtPath("/opt/Scanner.app", Arguments{"a", "b c"}));
    EXPECT_EQ(launcher.launchCounter(), 1);
    EXPECT_EQ(launched().program, "/opt/Scanner.app/Contents/MacOS/Scanner");
    EXPECT_EQ(launched().arguments, (Arguments{"a", "b c"}));
}

TEST_F(LauncherTest, BundleNameLosesOnlyItsLastExtension) {
    EXPECT_TRUE(launcher.launchApplicationAtPath("/opt/My.Scanner.app/", std::nullopt));
    EXPECT_EQ(launched().program, "/opt/My.Scanner.app//Contents/MacOS/My.Scanner");
    EXPECT_TRUE(launched().arguments.empty());
}

TEST_F(LauncherTest, KeptFailedLaunchIsAnsweredYes) {
    EXPECT_TRUE(launcher.launchApplicationAtPath("/opt/Missing.app", std::nullopt));
    EXPECT_EQ(launcher.launchCounter(), 0);
    ASSERT_EQ(log->notices().size(), 1U);
    EXPECT_NE(log->notices()[0].find("/opt/Missing.app/Contents/MacOS/Missing"), std::string::npos);
}

struct TitleCase {
    const char* name;
    const char* title;
    const char* executable;
};

class BundledTitle : public LauncherTest, public testing::WithParamInterface<TitleCase> {};

TEST_P(BundledTitle, IsSoughtInTheResourceFolder) {
    bus->serve("Name", anyObject());
    EXPECT_TRUE(
        launcher.launchDistributedBundledApplicationWithTitle(GetParam().title, "Name", nullptr)
            .has_value());
    EXPECT_EQ(launched().program, GetParam().executable);
    EXPECT_EQ(launched().arguments, Arguments{"Name"});
}

constexpr TitleCase kTitles[] = {
    {"Bare", "Scanner", "/opt/App.app/Contents/Resources/Scanner.app/Contents/MacOS/Scanner"},
    {"WithEnding", "Scanner.app",
     "/opt/App.app/Contents/Resources/Scanner.app/Contents/MacOS/Scanner"},
    {"UpperCaseEnding", "Scanner.APP",
     "/opt/App.app/Contents/Resources/Scanner.APP/Contents/MacOS/Scanner"},
    {"OtherEnding", "Scanner.application",
     "/opt/App.app/Contents/Resources/Scanner.application.app/Contents/MacOS/Scanner.application"},
};

INSTANTIATE_TEST_SUITE_P(Table, BundledTitle, testing::ValuesIn(kTitles),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(LauncherTest, AnswersAProxyOfTheProtocol) {
    allow("/opt/Scanner.app/Contents/MacOS/Scanner");
    bus->serve("Name", anyObject());
    const auto proxy = launcher.launchDistributedApplicationAtPath(
        "/opt/Scanner.app", "Name", &kQRXDistributedAppCommunicationProtocol);
    ASSERT_TRUE(proxy.has_value());
    EXPECT_EQ(proxy->protocolForProxy(), "com.quillfen.QRXDistributedAppCommunicationProtocol");
    EXPECT_EQ(proxy->address().connectionName, "Name");
    EXPECT_EQ(proxy->timeLimit(), platform::ServiceBus::kNoTimeLimit);
}

TEST_F(LauncherTest, ProxyWithoutProtocolHasNone) {
    bus->serve("Name", anyObject());
    const auto proxy =
        launcher.launchDistributedApplicationAtPath("/opt/Scanner.app", "Name", nullptr);
    ASSERT_TRUE(proxy.has_value());
    EXPECT_EQ(proxy->protocolForProxy(), "");
}

TEST_F(LauncherTest, PassesTheMarkAfterTheName) {
    bus->serve("Name", anyObject());
    EXPECT_TRUE(
        launcher.launchDistributedApplicationAtPath("/opt/Scanner.app", "Name", nullptr, true)
            .has_value());
    EXPECT_EQ(launched().arguments,
              (Arguments{"Name", std::string(QRXDistributedParentMustNotBeSelfArgument)}));
}

TEST_F(LauncherTest, WithoutNameAndFlagThereAreNoArguments) {
    allow("/opt/Scanner.app/Contents/MacOS/Scanner");
    bus->serve("", anyObject());  // the empty name is a name; no name is none
    EXPECT_FALSE(
        launcher
            .launchDistributedApplicationAtPath("/opt/Scanner.app", std::nullopt, nullptr, false)
            .has_value());
    EXPECT_TRUE(launched().arguments.empty());
    EXPECT_EQ(clock->now(), seconds{3});
    EXPECT_EQ(launcher.launchCounter(), 1);
}

TEST_F(LauncherTest, WithoutNameTheMarkStandsAlone) {
    EXPECT_FALSE(
        launcher.launchDistributedApplicationAtPath("/opt/Scanner.app", std::nullopt, nullptr, true)
            .has_value());
    EXPECT_EQ(launched().arguments,
              Arguments{std::string(QRXDistributedParentMustNotBeSelfArgument)});
}

TEST_F(LauncherTest, WaitsInTenthsOfASecondForThreeSeconds) {
    allow("/opt/Scanner.app/Contents/MacOS/Scanner");
    EXPECT_FALSE(launcher.launchDistributedApplicationAtPath("/opt/Scanner.app", "Name", nullptr)
                     .has_value());
    EXPECT_EQ(clock->sleeps, (std::vector<platform::Clock::Duration>(30, milliseconds{100})));
    EXPECT_EQ(bus->lookUps.size(), 30U);
    EXPECT_EQ(launcher.launchCounter(), 1);
}

TEST_F(LauncherTest, WaitsAsLongForAChildThatCouldNotBeStarted) {
    EXPECT_FALSE(launcher.launchDistributedApplicationAtPath("/opt/Missing.app", "Name", nullptr)
                     .has_value());
    EXPECT_EQ(clock->now(), seconds{3});
    EXPECT_EQ(launcher.launchCounter(), 0);
}

TEST_F(LauncherTest, ChildThatRegistersAfterOneSecondIsAnsweredThen) {
    bus->onLookUp = [&, served = false](std::string_view) mutable {
        if (served || clock->now() < seconds{1}) return;
        bus->serve("Name", anyObject());
        served = true;
    };
    EXPECT_TRUE(launcher.launchDistributedApplicationAtPath("/opt/Scanner.app", "Name", nullptr)
                    .has_value());
    EXPECT_GE(clock->now(), seconds{1});
    EXPECT_LE(clock->now(), milliseconds{1100});
}

TEST_F(LauncherTest, WithoutABusThereIsNoProxy) {
    bus->reachable = false;
    EXPECT_FALSE(launcher.launchDistributedApplicationAtPath("/opt/Scanner.app", "Name", nullptr)
                     .has_value());
}

TEST_F(LauncherTest, MethodsOfTheControllerAreNotItsOwn) {
    bus->serve("Name", anyObject());
    EXPECT_FALSE(
        launcher.launchDistributedApplicationAtPath("/opt/Scanner.app", "Name").has_value());
    EXPECT_FALSE(
        launcher
            .launchDistributedApplicationAtPathParentAppCantBeSelf("/opt/Scanner.app", "Name", true)
            .has_value());
    EXPECT_TRUE(runner->launched().empty());
}

}  // namespace
}  // namespace qrx
