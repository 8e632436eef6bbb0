// How warm runs end, many at a time, and what is left of them: nothing.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <set>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/WarmTools.h"
#include "platform/linux/WarmProcessRunner.h"
#include "support/Callers.h"

namespace qrx::platform {
namespace {

using namespace std::chrono_literals;
using test::becomesTrue;
using test::ToolCopy;
using test::warmAtOnce;

std::set<std::string> openDescriptors() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

bool hasNoChild() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
}

class WarmLifeTest : public testing::Test {
protected:
    /// The number of a process that hangs, once it says so.
    [[nodiscard]] pid_t hanging(const std::string& name = "hanging") const {
        const std::string path = tool_.folder() / name;
        EXPECT_TRUE(becomesTrue([&] { return std::filesystem::exists(path); }));
        return std::stoi(qrx::test::fileContents(path));
    }
    [[nodiscard]] ProcessRequest hang(const std::string& name = "hanging") const {
        return tool_.asked({"hang", tool_.folder() / name});
    }

    const ToolCopy tool_;
};

TEST_F(WarmLifeTest, TimeLimitEndsAToolThatHearsNothing) {
    std::vector<ProcessRequest> told;
    WarmProcessRunner warm(
        {.timeLimit = 300ms,
         .onTimeLimit = [&](const ProcessRequest& request) { told.push_back(request); }},
        warmAtOnce());
    const ProcessResult result = warm.run(hang());
    EXPECT_TRUE(result.endedByTimeLimit);
    EXPECT_EQ(result.exitStatus, 128 + SIGKILL);
    EXPECT_EQ(told.size(), 1U);
    EXPECT_EQ(warm.pool().counts().warmRuns, 1U);
    EXPECT_EQ(tool_.processes().size(), 1U) << "the warm parent alone";
    EXPECT_EQ(warm.run(tool_.asked({"exit", "3"})).exitStatus, 3);
}

TEST_F(WarmLifeTest, WhatAToolLeavesBehindEndsWithIt) {
    WarmProcessRunner warm({}, warmAtOnce());
    const std::string grandchild = warm.run(tool_.asked({"grandchild"})).standardOutput;
    EXPECT_EQ(warm.pool().counts().warmRuns, 1U);
    ASSERT_FALSE(grandchild.empty());
    EXPECT_TRUE(becomesTrue([&] { return tool_.processes().size() == 1; }));
}

TEST_F(WarmLifeTest, CancelEndsWhatRunsAndWhatWaits) {
    WarmProcessRunner warm({}, warmAtOnce());
    std::atomic<int> cancelled = 0;
    qrx::test::Callers callers(4, [&](int caller) {
        EXPECT_THROW((void)warm.run(hang(std::to_string(caller))), RunCancelled);
        ++cancelled;
    });
    for (int caller = 0; caller < 4; ++caller) {
        (void)hanging(std::to_string(caller));
    }
    warm.cancelAll();
    callers.wait();
    EXPECT_EQ(cancelled, 4);
    EXPECT_THROW((void)warm.run(tool_.asked({"quiet"})), RunCancelled);
}

TEST_F(WarmLifeTest, CancelWhileAParentIsBeingStartedDoesNotWaitForIt) {
    const ToolCopy slow(QRX_WARM_TOOL_THAT_HANGS);
    WarmChoices choices = warmAtOnce();
    choices.answerLimit = std::chrono::hours{1};
    WarmProcessRunner warm({}, choices);
    std::atomic<bool> isCancelled = false;
    std::thread other([&] {
        EXPECT_THROW((void)warm.run(slow.asked({"quiet"})), RunCancelled);
        isCancelled = true;
    });
    EXPECT_TRUE(becomesTrue([&] { return !slow.processes().empty(); }));
    warm.cancelAll();
    EXPECT_TRUE(becomesTrue([&] { return isCancelled.load(); }));
    other.join();
    EXPECT_TRUE(slow.processes().empty());
}

TEST_F(WarmLifeTest, EndOfItsRequestEndsARunAndNoOther) {
    WarmProcessRunner warm({}, warmAtOnce());
    std::stop_source request;
    std::thread other([&] {
        const RunsUntil until(request.get_token());
        EXPECT_THROW((void)warm.run(hang()), RunCancelled);
    });
    (void)hanging();
    request.request_stop();
    other.join();
    EXPECT_EQ(warm.run(tool_.asked({"exit", "3"})).exitStatus, 3);
    EXPECT_EQ(warm.pool().counts().warmRuns, 2U);
}

TEST_F(WarmLifeTest, CancelRacingWithStartsLeavesNothingRunning) {
    for (int round = 0; round < 15; ++round) {
        {
            WarmProcessRunner warm({}, warmAtOnce());
            qrx::test::Callers callers(4, [&](int /*caller*/) {
                EXPECT_THROW(for (;;)(void) warm.run(tool_.asked({"quiet"})), RunCancelled);
            });
            std::this_thread::sleep_for(std::chrono::microseconds{700 * round});
            warm.cancelAll();
            callers.wait();
        }
        EXPECT_TRUE(tool_.processes().empty());
    }
    EXPECT_TRUE(hasNoChild());
}

TEST_F(WarmLifeTest, SixteenThreadsKeepTheirReportsApart) {
    WarmProcessRunner warm({}, warmAtOnce());
    std::atomic<int> right = 0;
    constexpr int kThreads = 16;
    constexpr int kRuns = 40;
    qrx::test::Callers callers(kThreads, [&](int caller) {
        for (int run = 0; run < kRuns; ++run) {
            const int status = (caller * kRuns + run) % 200;
            if (warm.run(tool_.asked({"exit", std::to_string(status)})).exitStatus == status) {
                ++right;
            }
        }
    });
    callers.wait();
    EXPECT_EQ(right, kThreads * kRuns);
    EXPECT_EQ(warm.pool().counts().warmRuns, static_cast<unsigned>(kThreads * kRuns));
    const std::size_t most = std::clamp(std::thread::hardware_concurrency(), 1U, 16U);
    EXPECT_LE(warm.pool().counts().parentsStarted, most);
}

TEST_F(WarmLifeTest, SixteenThreadsShareOneParent) {
    WarmChoices choices = warmAtOnce();
    choices.parentsAtMost = 1;
    WarmProcessRunner warm({}, choices);
    std::atomic<int> right = 0;
    qrx::test::Callers callers(16, [&](int caller) {
        for (int run = 0; run < 10; ++run) {
            if (warm.run(tool_.asked({"exit", std::to_string(caller)})).exitStatus == caller) {
                ++right;
            }
        }
    });
    callers.wait();
    EXPECT_EQ(right, 160);
    EXPECT_EQ(warm.pool().counts().parentsStarted, 1U);
}

TEST_F(WarmLifeTest, RunsThatTakeLongDoNotHoldTheParent) {
    WarmChoices choices = warmAtOnce();
    choices.parentsAtMost = 1;
    WarmProcessRunner warm({}, choices);
    std::thread other([&] { EXPECT_THROW((void)warm.run(hang()), RunCancelled); });
    (void)hanging();
    EXPECT_EQ(warm.run(tool_.asked({"exit", "3"})).exitStatus, 3);
    EXPECT_EQ(warm.pool().counts().warmRuns, 2U);
    warm.cancelAll();
    other.join();
}

TEST_F(WarmLifeTest, AThousandRunsLeaveNoDescriptorAndNoProcess) {
    {
        WarmProcessRunner warm({}, warmAtOnce());
        (void)warm.run(tool_.asked({"quiet"}));
        const std::set<std::string> before = openDescriptors();
        for (int run = 0; run < 1000; ++run) {
            ASSERT_EQ(warm.run(tool_.asked({"exit", "3"})).exitStatus, 3);
        }
        EXPECT_EQ(warm.pool().counts().warmRuns, 1001U);
        EXPECT_EQ(warm.pool().counts().parentsStarted, 1U);
        EXPECT_EQ(openDescriptors(), before);
        EXPECT_EQ(tool_.processes().size(), 1U);
    }
    EXPECT_TRUE(tool_.processes().empty());
    EXPECT_TRUE(hasNoChild());
}

TEST_F(WarmLifeTest, ParentsThatAreNotUsedAreEnded) {
    WarmChoices choices = warmAtOnce();
    choices.idleLimit = 100ms;
    WarmProcessRunner warm({}, choices);
    const std::set<std::string> before = openDescriptors();
    EXPECT_EQ(warm.run(tool_.asked({"exit", "3"})).exitStatus, 3);
    EXPECT_TRUE(becomesTrue([&] { return warm.pool().idleParents().empty(); }));
    EXPECT_TRUE(becomesTrue([&] { return tool_.processes().empty(); }));
    EXPECT_TRUE(becomesTrue([&] { return hasNoChild(); })) << "left as a zombie";
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(warm.run(tool_.asked({"exit", "4"})).exitStatus, 4);
    EXPECT_EQ(warm.pool().counts().parentsStarted, 2U);
}

TEST_F(WarmLifeTest, ThreadsThatComeAndGoShareTheParents) {
    WarmProcessRunner warm({}, warmAtOnce());
    for (int round = 0; round < 30; ++round) {
        std::thread([&] { EXPECT_EQ(warm.run(tool_.asked({"exit", "3"})).exitStatus, 3); }).join();
    }
    EXPECT_EQ(warm.pool().counts().parentsStarted, 1U);
    EXPECT_EQ(warm.pool().counts().warmRuns, 30U);
}

/// A process of its own that runs the tool, warm, and hangs in it; ended by SIGKILL.
TEST_F(WarmLifeTest, ClientThatIsKilledLeavesNothingBehind) {
    for (const bool killParentsFirst : {false, true}) {
        SCOPED_TRACE(killParentsFirst);
        const std::string name = killParentsFirst ? "without" : "with";
        const pid_t client = ::fork();
        ASSERT_GE(client, 0);
        if (client == 0) {
            WarmProcessRunner warm({}, warmAtOnce());
            (void)warm.run(tool_.asked({"quiet"}));
            (void)warm.run(hang(name));
            ::_exit(0);
        }
        const pid_t tool = hanging(name);
        std::set<pid_t> running = tool_.processes();
        EXPECT_EQ(running.size(), 2U) << "the warm parent and its child";
        running.erase(tool);
        for (const pid_t parent : running) {
            if (killParentsFirst) ::kill(parent, SIGKILL);
        }
        ::kill(client, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(client, &status, 0), client);
        EXPECT_TRUE(becomesTrue([&] { return tool_.processes().empty(); }));
    }
}

}  // namespace
}  // namespace qrx::platform
