// Tools that cannot be warmed, and what goes wrong between a warm parent and us: such runs are
// plain, and nobody notices.

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/WarmTools.h"
#include "platform/linux/PosixProcessRunner.h"
#include "platform/linux/WarmProcessRunner.h"
#include "support/PlainUser.h"

namespace qrx::platform {
namespace {

using namespace std::chrono_literals;
using test::becomesTrue;
using test::ToolCopy;
using test::warmAtOnce;

class WarmFallbackTest : public testing::Test {
protected:
    WarmChoices choices() {
        WarmChoices chosen = warmAtOnce();
        chosen.onPlain = [this](std::string_view why) {
            const std::lock_guard lock(mutex_);
            said_.emplace_back(why);
        };
        return chosen;
    }

    /// Runs it three times, each as in a plain run, and none of them warm.
    void expectPlain(const ProcessRequest& request, const std::string& why) {
        WarmProcessRunner warm({}, choices());
        const ProcessResult plain = PosixProcessRunner().run(request);
        for (int round = 0; round < 3; ++round) {
            const ProcessResult result = warm.run(request);
            EXPECT_EQ(result.standardOutput, plain.standardOutput);
            EXPECT_EQ(result.standardError, plain.standardError);
            EXPECT_EQ(result.exitStatus, plain.exitStatus);
        }
        EXPECT_EQ(warm.pool().counts().warmRuns, 0U);
        if (why.empty()) return;
        EXPECT_THAT(said_,
                    testing::ElementsAre(request.program + " is run plainly from now on: " + why));
    }

    void expectPlainTool(const std::string& built, const std::string& why) {
        const ToolCopy tool(built);
        expectPlain(tool.asked({"world"}), why);
        EXPECT_TRUE(becomesTrue([&] { return tool.processes().empty(); }));
    }

    std::mutex mutex_;
    std::vector<std::string> said_;
};

TEST_F(WarmFallbackTest, StaticTool) {
    expectPlainTool(QRX_WARM_TOOL_STATIC, "is statically linked");
}

TEST_F(WarmFallbackTest, Script) {
    const qrx::test::TemporaryFolder folder;
    const std::string script = folder.write("ffmpeg", "#!/bin/sh\necho \"$@\"; exit 3\n");
    ::chmod(script.c_str(), 0755);
    expectPlain({script, {"-i", "a b"}, StandardError::captured},
                "is a script or of another machine");
}

TEST_F(WarmFallbackTest, ToolThatRunsAsSomebodyElse) {
    for (const mode_t mode : {04755U, 02755U}) {
        SCOPED_TRACE(mode);
        const ToolCopy tool;
        ASSERT_EQ(::chmod(tool.path().c_str(), mode), 0);
        said_.clear();
        expectPlain(tool.asked({"world"}), "runs as somebody else");
    }
}

TEST_F(WarmFallbackTest, ToolWithCapabilities) {
    const ToolCopy tool;
    // Version 2, cap_net_bind_service permitted and effective.
    const std::array<unsigned char, 20> capability{1, 0, 0, 2, 0, 4};
    if (::setxattr(tool.path().c_str(), "security.capability", capability.data(), capability.size(),
                   0) != 0) {
        GTEST_SKIP() << "only root may give a file capabilities";
    }
    expectPlain(tool.asked({"quiet"}), "has capabilities");
}

TEST_F(WarmFallbackTest, ToolWithAnotherLoader) {
    const ToolCopy tool;
    std::string bytes = qrx::test::fileContents(tool.path());
    const std::string loader = "/lib64/ld-linux-x86-64.so.2";
    const std::string link = tool.folder().link("ld", loader);
    const std::size_t at = bytes.find(loader);
    if (at == std::string::npos) GTEST_SKIP() << "not of this machine";
    bytes.replace(at, loader.size(), "/lib64/../lib64/ld-linux.so");
    std::ofstream(tool.path(), std::ios::binary) << bytes;
    WarmProcessRunner warm({}, choices());
    EXPECT_THROW((void)warm.run(tool.asked({"quiet"})), std::system_error) << "no such loader";
    EXPECT_THAT(said_, testing::ElementsAre(tool.path() + " is run plainly from now on: has "
                                                          "another loader or C library"));
}

TEST_F(WarmFallbackTest, WhatIsNoProgram) {
    const qrx::test::TemporaryFolder folder;
    WarmProcessRunner warm({}, choices());
    const std::string garbage = folder.write("garbage",
                                             "\x7f"
                                             "ELF no program at all");
    ::chmod(garbage.c_str(), 0755);
    for (const std::string& program : {std::string("/missing"), std::string(), folder.path(),
                                       garbage, folder.write("empty"), std::string("ffmpeg")}) {
        SCOPED_TRACE(program);
        for (int round = 0; round < 3; ++round) {
            EXPECT_THROW((void)warm.run({program, {"-i", "a"}, StandardError::captured}),
                         std::system_error);
        }
    }
}

/// Exit status, or -1 when it cannot be started.
int outcome(ProcessRunner& runner, const std::string& program) {
    try {
        return runner.run({program, {"-i", "quiet"}, StandardError::captured}).exitStatus;
    } catch (const std::system_error&) {
        return -1;
    }
}

TEST_F(WarmFallbackTest, EveryCutOfAProgramFailsAsInAPlainRun) {
    const ToolCopy tool;
    const std::string whole = qrx::test::fileContents(tool.path());
    const std::string cut = tool.folder() / "cut";
    PosixProcessRunner plain;
    WarmProcessRunner warm({}, choices());
    for (std::size_t size = 0; size < whole.size(); size += size < 1024 ? 61 : 2029) {
        SCOPED_TRACE(size);
        std::ofstream(cut, std::ios::binary) << whole.substr(0, size);
        ::chmod(cut.c_str(), 0755);
        EXPECT_EQ(outcome(warm, cut), outcome(plain, cut));
    }
}

TEST_F(WarmFallbackTest, MissingLibrary) {
    const ToolCopy tool;
    for (const auto& library :
         {std::optional<std::string>(), std::optional<std::string>("/missing/libqrxwarm.so")}) {
        WarmChoices chosen = choices();
        chosen.library = library;
        WarmProcessRunner warm({}, chosen);
        for (int round = 0; round < 4; ++round) {
            EXPECT_EQ(warm.run(tool.asked({"exit", "7"})).exitStatus, 7);
        }
        EXPECT_EQ(warm.pool().counts().warmRuns, 0U);
    }
}

TEST_F(WarmFallbackTest, LibraryThatIsNoLibrary) {
    const ToolCopy tool;
    WarmChoices chosen = choices();
    chosen.library = tool.folder().write("libqrxwarm.so", "not one");
    WarmProcessRunner warm({}, chosen);
    for (int round = 0; round < 4; ++round) {
        EXPECT_EQ(warm.run(tool.asked({"exit", "7"})).exitStatus, 7);
    }
    EXPECT_EQ(warm.pool().counts().warmRuns, 0U);
    EXPECT_THAT(said_,
                testing::ElementsAre(testing::EndsWith("did not stop before its main function")));
}

TEST_F(WarmFallbackTest, ToolThatWritesBeforeMain) {
    expectPlainTool(QRX_WARM_TOOL_THAT_WRITES, "writes before its main function");
}

TEST_F(WarmFallbackTest, ToolWithAThreadBeforeMain) {
    expectPlainTool(QRX_WARM_TOOL_WITH_THREAD, "cannot be copied before its main function");
}

TEST_F(WarmFallbackTest, ToolWithAFileBeforeMain) {
    expectPlainTool(QRX_WARM_TOOL_THAT_OPENS, "cannot be copied before its main function");
}

TEST_F(WarmFallbackTest, ToolWithAChildBeforeMain) {
    expectPlainTool(QRX_WARM_TOOL_WITH_CHILD, "cannot be copied before its main function");
}

TEST_F(WarmFallbackTest, ToolWithATimerBeforeMain) {
    expectPlainTool(QRX_WARM_TOOL_WITH_TIMER, "cannot be copied before its main function");
}

TEST_F(WarmFallbackTest, ToolThatEndsBeforeMain) {
    expectPlainTool(QRX_WARM_TOOL_THAT_ENDS, "did not stop before its main function");
}

TEST_F(WarmFallbackTest, ToolThatHangsBeforeMainMeetsTheTimeLimit) {
    const ToolCopy tool(QRX_WARM_TOOL_THAT_HANGS);
    WarmChoices chosen = choices();
    chosen.answerLimit = 200ms;
    WarmProcessRunner warm({.timeLimit = 300ms, .onTimeLimit = {}}, chosen);
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(warm.run(tool.asked({"quiet"})).endedByTimeLimit);
    }
    EXPECT_THAT(said_,
                testing::ElementsAre(testing::EndsWith("did not stop before its main function")));
    EXPECT_TRUE(tool.processes().empty());
}

TEST_F(WarmFallbackTest, ToolThatReadsOrBuffersBeforeMainIsWarmAllTheSame) {
    for (const std::string built : {QRX_WARM_TOOL_THAT_READS, QRX_WARM_TOOL_THAT_BUFFERS}) {
        SCOPED_TRACE(built);
        const ToolCopy tool(built);
        WarmProcessRunner warm({}, choices());
        const std::string plain = PosixProcessRunner().run(tool.asked({"world"})).standardOutput;
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(warm.run(tool.asked({"world"})).standardOutput, plain);
        }
        EXPECT_EQ(warm.pool().counts().warmRuns, 2U);
        EXPECT_TRUE(said_.empty());
    }
}

TEST_F(WarmFallbackTest, ParentThatWasEndedWhileAtRest) {
    const ToolCopy tool;
    WarmProcessRunner warm({}, choices());
    ASSERT_EQ(warm.run(tool.asked({"exit", "3"})).exitStatus, 3);
    for (const pid_t parent : warm.pool().idleParents()) {
        ::kill(parent, SIGKILL);
    }
    EXPECT_EQ(warm.run(tool.asked({"exit", "4"})).exitStatus, 4);
    EXPECT_THAT(said_,
                testing::ElementsAre(tool.path() + " is run plainly: its warm parent ended"));
    EXPECT_EQ(warm.run(tool.asked({"exit", "5"})).exitStatus, 5);
    EXPECT_EQ(warm.pool().counts().warmRuns, 2U) << "there is another parent";
    EXPECT_EQ(warm.pool().counts().parentsStarted, 2U);
}

TEST_F(WarmFallbackTest, ParentThatWasStoppedWhileAtRest) {
    const ToolCopy tool;
    WarmChoices chosen = choices();
    chosen.answerLimit = 200ms;
    WarmProcessRunner warm({}, chosen);
    ASSERT_EQ(warm.run(tool.asked({"exit", "3"})).exitStatus, 3);
    for (const pid_t parent : warm.pool().idleParents()) {
        ::kill(parent, SIGSTOP);
    }
    EXPECT_EQ(warm.run(tool.asked({"exit", "4"})).exitStatus, 4);
    EXPECT_EQ(warm.run(tool.asked({"exit", "5"})).exitStatus, 5);
    EXPECT_EQ(warm.pool().counts().parentsStarted, 2U);
}

TEST_F(WarmFallbackTest, ParentThatEndsWhileItsChildRunsDoesNotEndIt) {
    const ToolCopy tool;
    WarmProcessRunner warm({}, choices());
    const std::string number = tool.folder() / "number";
    std::thread ender([&] {
        while (warm.pool().counts().warmRuns == 0)
            std::this_thread::sleep_for(5ms);
        for (const pid_t parent : warm.pool().idleParents()) {
            ::kill(parent, SIGKILL);
        }
    });
    EXPECT_EQ(warm.run(tool.asked({"sleep", "500"})).exitStatus, 0);
    ender.join();
    EXPECT_EQ(warm.pool().counts().warmRuns, 1U);
}

TEST_F(WarmFallbackTest, ParentsThatAreEndedAllTheTimeCostNoRun) {
    const ToolCopy tool;
    WarmProcessRunner warm({}, choices());
    std::atomic<bool> isDone = false;
    std::thread ender([&] {
        while (!isDone) {
            for (const pid_t process : tool.processes()) {
                // The parent alone: a child stands in a group of its own, as the parent does, but
                // has no socket.
                std::error_code none;
                const std::string socket = "/proc/" + std::to_string(process) + "/fd/3";
                if (std::filesystem::is_symlink(socket, none)) ::kill(process, SIGKILL);
            }
        }
    });
    const std::string log = tool.folder() / "log";
    constexpr int kRuns = 60;
    int ended = 0;
    for (int run = 0; run < kRuns; ++run) {
        const ProcessResult result = warm.run(tool.asked({"write", log, "x"}));
        if (result.exitStatus == 128 + SIGKILL) ++ended;  // a child, taken before it let go
    }
    isDone = true;
    ender.join();
    const std::string written = std::filesystem::exists(log) ? qrx::test::fileContents(log) : "";
    // A child can be ended after it wrote: between the look at its socket and the signal.
    EXPECT_LE(written.size(), kRuns) << "none was run twice";
    EXPECT_GE(written.size() + static_cast<std::size_t>(ended), kRuns) << "each was run";
}

TEST_F(WarmFallbackTest, CopyOfThisProcessRunsPlainly) {
    const ToolCopy tool;
    std::filesystem::permissions(tool.folder().path(), std::filesystem::perms{0755});
    WarmProcessRunner warm({}, choices());
    (void)warm.run(tool.asked({"quiet"}));
    const std::string answer = qrx::test::askedByPlainUser([&] {
        const int status = warm.run(tool.asked({"exit", "3"})).exitStatus;
        return std::to_string(status) + " " + std::to_string(warm.pool().counts().warmRuns);
    });
    EXPECT_EQ(answer, ::geteuid() == 0 ? "3 1" : "3 2");
}

}  // namespace
}  // namespace qrx::platform
