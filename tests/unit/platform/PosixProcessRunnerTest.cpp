#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/PosixProcessRunner.h"
#include "support/Callers.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

using namespace std::chrono_literals;
using std::chrono::steady_clock;

ProcessRequest shell(const std::string& script,
                     StandardError standardError = StandardError::captured) {
    return {"/bin/sh", {"-c", script}, standardError};
}

/// The variable `name` is set to `value` while this lives.
class ScopedVariable {
public:
    ScopedVariable(std::string name, const char* value) : name_(std::move(name)) {
        ::setenv(name_.c_str(), value, 1);
    }
    ~ScopedVariable() { ::unsetenv(name_.c_str()); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    std::string name_;
};

std::set<std::string> openDescriptors() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

bool processExists(pid_t pid) {
    return ::kill(pid, 0) == 0;
}

/// The children of this process, those included that have ended and are not reaped.
std::set<std::string> ownChildren() {
    const std::string own = std::to_string(::getpid());
    std::set<std::string> children;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "stat");
        std::string stat;
        std::getline(file, stat);
        const std::size_t name = stat.rfind(") ");  // then the state, then the parent's number
        if (name == std::string::npos) continue;
        const std::string parent = stat.substr(name + 4, stat.find(' ', name + 4) - name - 4);
        if (parent == own) children.insert(entry.path().filename().string());
    }
    return children;
}

/// Whether `pid` still runs. Orphans go to the system's first process, which may reap them late.
bool processRuns(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string stat;
    std::getline(file, stat);
    const std::size_t name = stat.rfind(") ");
    return name != std::string::npos && stat.at(name + 2) != 'Z';
}

template <class Condition>
bool becomesTrue(const Condition& condition, std::chrono::milliseconds within = 10s) {
    const auto until = steady_clock::now() + within;
    while (!condition()) {
        if (steady_clock::now() > until) return false;
        std::this_thread::sleep_for(5ms);
    }
    return true;
}

/// Both ways of noticing the end of a child.
class PosixProcessRunnerTest : public testing::TestWithParam<bool> {
protected:
    [[nodiscard]] static ToolLimits limits(std::chrono::nanoseconds timeLimit = 0ns) {
        return {.timeLimit = timeLimit, .onTimeLimit = {}, .watchByDescriptor = GetParam()};
    }

    PosixProcessRunner runner_{limits()};
};

INSTANTIATE_TEST_SUITE_P(Watching, PosixProcessRunnerTest, testing::Bool(), [](const auto& row) {
    return std::string(row.param ? "ByDescriptor" : "ByLookingAgain");
});

TEST_P(PosixProcessRunnerTest, KeepsBothStreamsApart) {
    const ProcessResult result = runner_.run(shell("echo out; echo err >&2"));
    EXPECT_EQ(result.standardOutput, "out\n");
    EXPECT_EQ(result.standardError, "err\n");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_FALSE(result.endedByTimeLimit);
}

TEST_P(PosixProcessRunnerTest, InheritedStandardErrorIsNotKept) {
    const ProcessResult result =
        runner_.run(shell("exec 2>/dev/null; echo err >&2", StandardError::inherited));
    EXPECT_EQ(result.standardError, "");
}

TEST_P(PosixProcessRunnerTest, EachArgumentArrivesUnchanged) {
    const std::vector<std::string> hostile{"-c",   R"(printf '[%s]' "$@")",
                                           "name", "a b",
                                           "",     "$(id)",
                                           "`id`", "*",
                                           "a\nb", "\"",
                                           "\\\\", "\xff",
                                           "-x",   ";exit 3"};
    const ProcessResult result = runner_.run({"/bin/sh", hostile, StandardError::captured});
    EXPECT_EQ(result.standardOutput, "[a b][][$(id)][`id`][*][a\nb][\"][\\\\][\xff][-x][;exit 3]");
    EXPECT_EQ(result.exitStatus, 0);
}

TEST_P(PosixProcessRunnerTest, BinaryOutputIsKeptByteForByte) {
    EXPECT_EQ(runner_.run(shell(R"(printf 'a\000b\377')")).standardOutput,
              std::string("a\0b\xff", 4));
}

TEST_P(PosixProcessRunnerTest, GivesTheExitStatus) {
    EXPECT_EQ(runner_.run(shell("exit 7")).exitStatus, 7);
    EXPECT_EQ(runner_.run(shell("exit 255")).exitStatus, 255);
}

TEST_P(PosixProcessRunnerTest, CrashGivesSignalStatusAndWhatWasWritten) {
    const ProcessResult result = runner_.run(shell("echo before; kill -SEGV $$"));
    EXPECT_EQ(result.standardOutput, "before\n");
    EXPECT_EQ(result.exitStatus, 128 + SIGSEGV);
}

TEST_P(PosixProcessRunnerTest, WhatCannotBeStartedThrows) {
    const test::TemporaryFolder folder;
    const std::string text = folder.write("text", "echo no\n");
    for (const std::string& program : {std::string("/missing/tool"), std::string(), folder.path(),
                                       text, std::string("/bin/sh\0x", 9)}) {
        SCOPED_TRACE(program);
        EXPECT_THROW((void)runner_.run({program, {}, StandardError::captured}), std::system_error);
    }
    EXPECT_THROW((void)runner_.run(shell(std::string("echo a\0b", 8))), std::system_error);
}

TEST_P(PosixProcessRunnerTest, BareNameIsNotSoughtAlongPath) {
    EXPECT_THROW((void)runner_.run({"true", {}, StandardError::captured}), std::system_error);
}

TEST_P(PosixProcessRunnerTest, LongReportOnBothStreamsCannotBlock) {
    const ProcessResult result = runner_.run(
        shell("head -c 1000000 /dev/zero >&2; head -c 1000000 /dev/zero; echo end >&2"));
    EXPECT_EQ(result.standardOutput.size(), 1'000'000U);
    EXPECT_EQ(result.standardError.size(), 1'000'004U);
}

TEST_P(PosixProcessRunnerTest, KeepsSixteenMebibytesAndDropsTheRest) {
    const ProcessResult result =
        runner_.run(shell("head -c 20000000 /dev/zero; head -c 17000000 /dev/zero >&2; exit 3"));
    EXPECT_EQ(result.standardOutput.size(), ProcessRunner::kKeptBytesPerPipe);
    EXPECT_EQ(result.standardError.size(), ProcessRunner::kKeptBytesPerPipe);
    EXPECT_EQ(result.exitStatus, 3);
}

TEST_P(PosixProcessRunnerTest, ChildThatClosesItsOutputIsStillWaitedFor) {
    const ProcessResult result = runner_.run(shell("exec >&- 2>&-; sleep 0.2; exit 4"));
    EXPECT_EQ(result.exitStatus, 4);
}

TEST_P(PosixProcessRunnerTest, TimeLimitEndsEndlessOutput) {
    std::vector<ProcessRequest> told;
    ToolLimits limited = limits(200ms);
    limited.onTimeLimit = [&](const ProcessRequest& request) { told.push_back(request); };
    PosixProcessRunner runner(limited);
    const auto start = steady_clock::now();
    const ProcessResult result = runner.run({"/usr/bin/yes", {"clip"}, StandardError::captured});
    EXPECT_LT(steady_clock::now() - start, 10s);
    EXPECT_TRUE(result.endedByTimeLimit);
    EXPECT_EQ(result.exitStatus, 128 + SIGKILL);
    EXPECT_TRUE(result.standardOutput.starts_with("clip\nclip\n"));
    ASSERT_EQ(told.size(), 1U);
    EXPECT_THAT(told[0].arguments, testing::ElementsAre("clip"));
}

TEST_P(PosixProcessRunnerTest, TimeLimitEndsSlowToolWithItsChildren) {
    PosixProcessRunner runner(limits(300ms));
    const ProcessResult result = runner.run(shell("sleep 100 & echo $!; sleep 100"));
    EXPECT_TRUE(result.endedByTimeLimit);
    const pid_t grandchild = std::stoi(result.standardOutput);
    EXPECT_TRUE(becomesTrue([&] { return !processRuns(grandchild); }));
}

TEST_P(PosixProcessRunnerTest, RequestMayHaveALimitOfItsOwn) {
    for (const auto runnersLimit : {0ns, std::chrono::nanoseconds(1h)}) {
        bool told = false;
        ToolLimits limited = limits(runnersLimit);
        limited.onTimeLimit = [&](const ProcessRequest&) { told = true; };
        PosixProcessRunner runner(limited);
        ProcessRequest request = shell("exec sleep 600");
        request.timeLimit = 50ms;
        EXPECT_TRUE(runner.run(request).endedByTimeLimit);
        EXPECT_FALSE(told) << "it is the runner's own limit that is told";
    }
}

TEST_P(PosixProcessRunnerTest, LongerLimitOfARequestDoesNotLengthenTheRunners) {
    bool told = false;
    ToolLimits limited = limits(50ms);
    limited.onTimeLimit = [&](const ProcessRequest&) { told = true; };
    PosixProcessRunner runner(limited);
    ProcessRequest request = shell("exec sleep 600");
    request.timeLimit = 1h;
    EXPECT_TRUE(runner.run(request).endedByTimeLimit);
    EXPECT_TRUE(told);
}

TEST_P(PosixProcessRunnerTest, ToolWithinItsTimeLimitIsLeftAlone) {
    bool told = false;
    ToolLimits limited = limits(std::chrono::hours{24 * 365 * 200});
    limited.onTimeLimit = [&](const ProcessRequest&) { told = true; };
    PosixProcessRunner runner(limited);
    const ProcessResult result = runner.run(shell("sleep 0.1; echo done"));
    EXPECT_EQ(result.standardOutput, "done\n");
    EXPECT_FALSE(result.endedByTimeLimit);
    EXPECT_FALSE(told);
}

TEST_P(PosixProcessRunnerTest, GrandchildThatHoldsThePipeDoesNotHang) {
    const auto start = steady_clock::now();
    const ProcessResult result = runner_.run(shell("sleep 100 & echo $!"));
    EXPECT_LT(steady_clock::now() - start, 10s);
    EXPECT_EQ(result.exitStatus, 0);
    const pid_t grandchild = std::stoi(result.standardOutput);
    EXPECT_TRUE(becomesTrue([&] { return !processRuns(grandchild); }));
}

TEST_P(PosixProcessRunnerTest, GrandchildThatLeftTheGroupAndWritesForEverDoesNotHang) {
    const test::TemporaryFolder folder;
    const std::string number = folder / "pid";
    const auto start = steady_clock::now();
    const ProcessResult result =
        runner_.run(shell("setsid sh -c 'echo $$ >" + number + "; exec yes' & until [ -s " +
                          number + " ]; do sleep 0.01; done"));
    EXPECT_LT(steady_clock::now() - start, 10s);
    EXPECT_EQ(result.exitStatus, 0);
    // Our end of the pipe is closed, so the writer meets SIGPIPE and goes.
    const pid_t grandchild = std::stoi(test::fileContents(number));
    EXPECT_TRUE(becomesTrue([&] { return !processRuns(grandchild); }));
}

TEST_P(PosixProcessRunnerTest, WhatWasWrittenJustBeforeTheEndIsComplete) {
    for (int round = 0; round < 50; ++round) {
        ASSERT_EQ(runner_.run(shell("head -c 60000 /dev/zero")).standardOutput.size(), 60'000U);
    }
}

TEST_P(PosixProcessRunnerTest, CancelEndsTheRunUnderWayAndEveryLaterOne) {
    const std::set<std::string> childrenBefore = ownChildren();
    std::atomic<bool> cancelled = false;
    std::thread other([&] {
        EXPECT_THROW((void)runner_.run(shell("sleep 100")), RunCancelled);
        cancelled = true;
    });
    std::this_thread::sleep_for(200ms);
    runner_.cancelAll();
    EXPECT_TRUE(becomesTrue([&] { return cancelled.load(); }));
    other.join();
    EXPECT_THROW((void)runner_.run(shell("true")), RunCancelled);
    EXPECT_EQ(ownChildren(), childrenBefore);
}

TEST_P(PosixProcessRunnerTest, CancelRacingWithStartsLeavesNothingRunning) {
    const std::set<std::string> childrenBefore = ownChildren();
    for (int round = 0; round < 20; ++round) {
        PosixProcessRunner runner(limits());
        test::Callers callers(4, [&](int /*caller*/) {
            EXPECT_THROW(
                {
                    for (;;) {
                        (void)runner.run({"/bin/sleep", {"100"}, StandardError::captured});
                    }
                },
                RunCancelled);
        });
        std::this_thread::sleep_for(std::chrono::microseconds{200 * round});
        runner.cancelAll();
        callers.wait();
    }
    EXPECT_EQ(ownChildren(), childrenBefore);
}

TEST_P(PosixProcessRunnerTest, ParallelRunsKeepTheirReportsApart) {
    std::atomic<int> right = 0;
    test::Callers callers(4, [&](int caller) {
        for (int round = 0; round < 25; ++round) {
            const std::string text = std::to_string(caller * 100 + round);
            if (runner_.run(shell("echo " + text)).standardOutput == text + "\n") ++right;
        }
    });
    callers.wait();
    EXPECT_EQ(right, 100);
}

TEST_P(PosixProcessRunnerTest, ChildHasNoDescriptorOfOurs) {
    std::vector<int> opened;
    opened.reserve(64);
    for (int i = 0; i < 64; ++i) {
        opened.push_back(::open("/dev/null", O_RDONLY));  // as hosts do: without close-on-exec
        ASSERT_GE(opened.back(), 0);
    }
    // The shell expands the pattern with a descriptor of its own open on the folder.
    const ProcessResult result = runner_.run(shell("ls -1 /proc/self/fd | wc -l"));
    for (const int descriptor : opened) {
        ::close(descriptor);
    }
    EXPECT_EQ(std::stoi(result.standardOutput), 4);  // three streams, and the folder ls reads
}

TEST_P(PosixProcessRunnerTest, FiveHundredRunsLeaveNoDescriptorAndNoZombie) {
    const std::set<std::string> childrenBefore = ownChildren();
    (void)runner_.run(shell("true"));
    const std::set<std::string> before = openDescriptors();
    for (int round = 0; round < 500; ++round) {
        ASSERT_EQ(runner_.run({"/bin/true", {}, StandardError::captured}).exitStatus, 0);
    }
    EXPECT_THROW((void)runner_.run({"/missing", {}, StandardError::captured}), std::system_error);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(ownChildren(), childrenBefore);
}

TEST_P(PosixProcessRunnerTest, VariablesThatChangeReportsAreCleared) {
    const std::vector<std::string> cleared{
        "FFREPORT",       "AV_LOG_FORCE_COLOR", "AV_LOG_FORCE_NOCOLOR", "AV_LOG_FORCE_256COLOR",
        "FFMPEG_DATADIR", "AVCONV_DATADIR"};
    std::vector<std::unique_ptr<ScopedVariable>> set;
    for (const std::string& name : cleared) {
        set.push_back(std::make_unique<ScopedVariable>(name, "leaked"));
    }
    const ScopedVariable kept("FFREPORTER", "kept");
    const std::string environment =
        runner_.run({"/usr/bin/env", {}, StandardError::captured}).standardOutput;
    EXPECT_THAT(environment, testing::Not(testing::HasSubstr("leaked")));
    EXPECT_THAT(environment, testing::HasSubstr("FFREPORTER=kept\n"));
    EXPECT_STREQ(std::getenv("FFREPORT"), "leaked") << "our own environment is not touched";
}

TEST_P(PosixProcessRunnerTest, SignalsOfTheChildAreAsTheSystemGivesThem) {
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::sigaddset(&blocked, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto pipeBefore = std::signal(SIGPIPE, SIG_IGN);
    const ProcessResult result = runner_.run(
        {"/bin/grep", {"Sig[BI][lg][kn]", "/proc/self/status"}, StandardError::captured});
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGPIPE, pipeBefore);
    // Signals 32 and 33 belong to the C library, which ignores them while it spawns.
    EXPECT_THAT(result.standardOutput, testing::StartsWith("SigBlk:\t0000000000000000\n"));
    EXPECT_THAT(result.standardOutput, testing::HasSubstr("SigIgn:\t0000000"));
    EXPECT_THAT(result.standardOutput, testing::EndsWith("0000000\n"));
}

TEST_P(PosixProcessRunnerTest, LaunchedProgramLivesOnAndIsReaped) {
    const test::TemporaryFolder folder;
    const std::string mark = folder / "mark";
    const auto start = steady_clock::now();
    runner_.launch(
        shell("echo noise >&2; sleep 0.3; echo $$ >" + mark + ".tmp; mv " + mark + ".tmp " + mark));
    EXPECT_LT(steady_clock::now() - start, 250ms);
    runner_.cancelAll();  // concerns children of run alone
    ASSERT_TRUE(becomesTrue([&] { return std::filesystem::exists(mark); }));
    const pid_t launched = std::stoi(test::fileContents(mark));
    EXPECT_TRUE(becomesTrue([&] { return !processExists(launched); })) << "left as a zombie";
}

TEST_P(PosixProcessRunnerTest, LaunchOfWhatIsMissingThrows) {
    EXPECT_THROW(runner_.launch({"/missing", {}, StandardError::inherited}), std::system_error);
}

}  // namespace
}  // namespace qrx::platform
