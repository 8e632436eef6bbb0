#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "support/InterfaceXml.h"
#include "unit/distributed/DistributedFixture.h"

namespace qrx {
namespace {

using test::ControllerUnderTest;

class ExportedMethodsTest : public test::DistributedTest {
protected:
    ControllerUnderTest controller;
};

TEST_F(ExportedMethodsTest, DescriptionsNameWhatIsAnsweredAndNothingElse) {
    std::vector<std::string> described;
    for (const std::string_view xml : controller.interfaceDescriptions()) {
        const auto members = test::describedMethods(xml);
        described.insert(described.end(), members.begin(), members.end());
    }
    std::vector<std::string> answered;
    for (const BusMethod& method : controller.exportedMethods()) {
        answered.push_back(std::string(method.interfaceName) + "." + std::string(method.member));
    }
    std::sort(described.begin(), described.end());
    std::sort(answered.begin(), answered.end());
    EXPECT_EQ(described, answered);
    EXPECT_EQ(answered.size(), 11U);
}

TEST_F(ExportedMethodsTest, NoMemberOccursTwice) {
    std::set<std::string_view> members;
    for (const BusMethod& method : controller.exportedMethods()) {
        EXPECT_TRUE(members.insert(method.member).second) << method.member;
    }
}

TEST_F(ExportedMethodsTest, WhatNeverReturnsRunsOnAThreadOfItsOwn) {
    for (const BusMethod& method : controller.exportedMethods()) {
        const bool neverReturns = method.member == "ensureParentApplicationIsRunning" ||
                                  method.member == "configureKillTimer";
        EXPECT_EQ(method.servedOn == platform::ServedOn::ownThread, neverReturns) << method.member;
    }
}

TEST_F(ExportedMethodsTest, WhatNeverAnswersIsMarkedInTheDescription) {
    std::string all;
    for (const std::string_view xml : controller.interfaceDescriptions())
        all += xml;
    EXPECT_EQ(test::methodsMarkedNoReply(all),
              (std::vector<std::string>{"ensureParentApplicationIsRunning", "configureKillTimer"}));
}

TEST_F(ExportedMethodsTest, EndsOnlyAfterTheAnswerIsOnItsWay) {
    ExportedObject root(controller.interfaceDescriptions(), controller.exportedMethods());
    platform::BusCall call;
    call.interfaceName = kQRXDistributedAppCommunicationProtocol.interfaceName;
    call.member = "killSelf";
    const platform::BusAnswer answer = root.answer(call);
    EXPECT_EQ(timesTerminated(), 0);
    ASSERT_TRUE(answer.afterwards);
    answer.afterwards();
    EXPECT_EQ(timesTerminated(), 1);
}

TEST_F(ExportedMethodsTest, LaunchAnswersFoundNameAndPath) {
    ExportedObject root(controller.interfaceDescriptions(), controller.exportedMethods());
    platform::BusCall call;
    call.interfaceName = kQRXApplicationLauncherProtocol.interfaceName;
    call.member = "launchDistributedApplicationAtPath";
    call.arguments = {"/opt/Missing.app", "Name"};
    EXPECT_EQ(root.answer(call).results,
              (platform::BusValues{false, "", platform::BusObjectPath{"/"}}));
    bus->serve("Name", std::make_shared<ExportedObject>(std::vector<std::string_view>{},
                                                        std::vector<BusMethod>{}));
    EXPECT_EQ(
        root.answer(call).results,
        (platform::BusValues{true, "Name", platform::BusObjectPath{"/com/quillfen/RootObject"}}));
}

TEST_F(ExportedMethodsTest, RefusesUnknownMembersAndWrongArguments) {
    ExportedObject root(controller.interfaceDescriptions(), controller.exportedMethods());
    platform::BusCall call;
    call.interfaceName = kQRXDistributedAppCommunicationProtocol.interfaceName;
    call.member = "notThere";
    EXPECT_THROW(static_cast<void>(root.answer(call)), platform::BusError);
    EXPECT_EQ(root.servedOn(call.interfaceName, call.member), platform::ServedOn::mainThread);
    call.member = "setParentProcessId";
    call.arguments = {"77"};
    EXPECT_THROW(static_cast<void>(root.answer(call)), platform::BusError);
    call.arguments = {};
    EXPECT_THROW(static_cast<void>(root.answer(call)), platform::BusError);
    EXPECT_EQ(controller.parentProcess(), kSelf);
}

}  // namespace
}  // namespace qrx
