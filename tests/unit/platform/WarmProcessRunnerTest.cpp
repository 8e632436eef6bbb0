// That nobody can tell a warm run from a plain one: every request is run both ways.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/WarmTools.h"
#include "platform/linux/PosixProcessRunner.h"
#include "platform/linux/WarmProcessRunner.h"

namespace qrx::platform {
namespace {

using test::ToolCopy;
using test::warmAtOnce;

class WarmProcessRunnerTest : public testing::Test {
protected:
    /// The result of a warm run, after it was found to be the same as that of a plain one.
    ProcessResult runBothWays(const ProcessRequest& request) {
        const ProcessResult plain = plain_.run(request);
        const auto before = warm_.pool().counts().warmRuns;
        ProcessResult warm = warm_.run(request);
        EXPECT_EQ(warm_.pool().counts().warmRuns, before + 1) << "it was not warm";
        EXPECT_EQ(warm.standardOutput, plain.standardOutput);
        EXPECT_EQ(warm.standardError, plain.standardError);
        EXPECT_EQ(warm.exitStatus, plain.exitStatus);
        EXPECT_EQ(warm.endedByTimeLimit, plain.endedByTimeLimit);
        return warm;
    }

    const ToolCopy tool_;
    PosixProcessRunner plain_;
    WarmProcessRunner warm_{{}, warmAtOnce()};
};

TEST_F(WarmProcessRunnerTest, EverythingThatAProgramSeesOfItsStartIsTheSame) {
    const ProcessResult result = runBothWays(tool_.asked({"world"}));
    EXPECT_THAT(result.standardOutput, testing::HasSubstr("group 1 session 1 thread 1\n"));
    EXPECT_THAT(result.standardOutput, testing::HasSubstr("constructed 1\n"));
    EXPECT_THAT(result.standardOutput, testing::Not(testing::HasSubstr("LD_PRELOAD")));
    EXPECT_THAT(result.standardOutput, testing::Not(testing::HasSubstr("QRX_WARM")));
    EXPECT_THAT(result.standardOutput, testing::Not(testing::HasSubstr("GLIBC_TUNABLES")));
    EXPECT_THAT(result.standardOutput, testing::Not(testing::HasSubstr("descriptor 3")));
    runBothWays(tool_.asked({"world"}));  // and nothing is left over from the run before
}

TEST_F(WarmProcessRunnerTest, ArgumentsArriveWithAllTheirBytes) {
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte) {
        everyByte.push_back(static_cast<char>(byte));
    }
    runBothWays(tool_.asked({"world", everyByte, "", "a b", "%s\n", "", std::string(4096, '/')}));
    runBothWays(tool_.asked({"world", ""}));
}

TEST_F(WarmProcessRunnerTest, LongArgumentsArriveOrFailAsInAPlainRun) {
    for (const std::size_t length : {60'000U, 65'000U, 65'536U, 70'000U, 131'000U}) {
        SCOPED_TRACE(length);
        const ProcessRequest request = tool_.asked({"world", std::string(length, 'x')});
        EXPECT_EQ(warm_.run(request).standardOutput, plain_.run(request).standardOutput);
    }
    EXPECT_THROW((void)warm_.run(tool_.asked({"world", std::string(200'000, 'x')})),
                 std::system_error);
    const ProcessRequest many = tool_.asked(std::vector<std::string>(5'000, "world"));
    EXPECT_EQ(warm_.run(many).standardOutput, plain_.run(many).standardOutput);
    runBothWays(tool_.asked({"world"}));
}

TEST_F(WarmProcessRunnerTest, RequestsAtTheEdgeOfTheMessageArriveWhole) {
    const std::size_t most = warm::kMostRequestBytes;
    for (std::size_t length = most - 200; length < most + 20; length += 7) {
        SCOPED_TRACE(length);
        const ProcessRequest request = tool_.asked({"world", std::string(length, 'x')});
        EXPECT_EQ(warm_.run(request).standardOutput, plain_.run(request).standardOutput);
    }
}

TEST_F(WarmProcessRunnerTest, NulIsRefusedAsInAPlainRun) {
    EXPECT_THROW((void)warm_.run(tool_.asked({std::string("a\0b", 3)})), std::system_error);
}

TEST_F(WarmProcessRunnerTest, EveryExitStatus) {
    for (int status = 0; status < 256; ++status) {
        const char* const way = status % 2 == 0 ? "exit" : "end";
        EXPECT_EQ(warm_.run(tool_.asked({way, std::to_string(status)})).exitStatus, status);
    }
    EXPECT_EQ(warm_.pool().counts().warmRuns, 256U);
}

TEST_F(WarmProcessRunnerTest, EverySignalThatEndsAProgram) {
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGABRT, SIGKILL, SIGUSR1, SIGSEGV, SIGPIPE,
                             SIGALRM, SIGTERM, SIGXCPU}) {
        SCOPED_TRACE(number);
        const auto result = warm_.run(tool_.asked({"signal", std::to_string(number)}));
        EXPECT_EQ(result.exitStatus, 128 + number);
    }
}

TEST_F(WarmProcessRunnerTest, CrashesHarmNobody) {
    EXPECT_EQ(runBothWays(tool_.asked({"crash"})).standardOutput, "before");
    EXPECT_EQ(runBothWays(tool_.asked({"abort"})).exitStatus, 128 + SIGABRT);
    EXPECT_EQ(runBothWays(tool_.asked({"hog"})).exitStatus, 128 + SIGABRT);
    runBothWays(tool_.asked({"world"}));
    EXPECT_EQ(warm_.pool().counts().parentsStarted, 1U);
}

TEST_F(WarmProcessRunnerTest, ThreadsMutexesAndSignalsKnowTheirProcess) {
    EXPECT_EQ(runBothWays(tool_.asked({"threads"})).standardOutput, "4 0 1 0 0 1 0 1 15\n");
}

TEST_F(WarmProcessRunnerTest, WhatIsLeftForTheEndIsDoneAtTheEnd) {
    EXPECT_EQ(runBothWays(tool_.asked({"late"})).standardOutput, "main, at the end\n");
}

TEST_F(WarmProcessRunnerTest, WhatTheProgramAskedForComesInTheSameOrderHoweverItEnds) {
    const std::string order = "registered before main, destructor of the program";
    EXPECT_EQ(runBothWays(tool_.asked({"ends", "return"})).standardOutput,
              "late 3, first 3, " + order);
    EXPECT_EQ(runBothWays(tool_.asked({"ends", "exit"})).standardOutput,
              "late 4, first 4, " + order);
    EXPECT_EQ(runBothWays(tool_.asked({"ends", "thread"})).standardOutput,
              "late 5, first 5, " + order);
    EXPECT_EQ(runBothWays(tool_.asked({"ends", "last thread"})).standardOutput,
              "late 0, first 0, " + order);
}

TEST_F(WarmProcessRunnerTest, DestructorsOfLibrariesAreNotRun) {
    const ProcessRequest request = tool_.asked({"library"});
    EXPECT_EQ(plain_.run(request).standardOutput, "destructor of a librarymain");
    EXPECT_EQ(warm_.run(request).standardOutput, "main");
    EXPECT_EQ(warm_.pool().counts().warmRuns, 1U);
}

TEST_F(WarmProcessRunnerTest, DestructorsOfLibrariesAreRunWhereTheyCannotBeToldApart) {
    for (const char* const built : {QRX_WARM_TOOL_AT_A_FIXED_ADDRESS, QRX_WARM_TOOL_WITH_STREAMS}) {
        const ToolCopy tool(built);
        EXPECT_EQ(runBothWays(tool.asked({"library"})).standardOutput,
                  "destructor of a librarymain");
        runBothWays(tool.asked({"ends", "return"}));
    }
}

TEST_F(WarmProcessRunnerTest, LongReportsOnBothStreams) {
    const ProcessResult result = runBothWays(tool_.asked({"fill"}));
    EXPECT_EQ(result.standardOutput.size(), ProcessRunner::kKeptBytesPerPipe);
    EXPECT_EQ(result.standardError.size(), ProcessRunner::kKeptBytesPerPipe);
}

TEST_F(WarmProcessRunnerTest, InheritedStandardErrorIsNotKept) {
    ProcessRequest request = tool_.asked({"world"});
    request.standardError = StandardError::inherited;
    EXPECT_EQ(runBothWays(request).standardError, "");
}

TEST_F(WarmProcessRunnerTest, WorkingFolderIsThatOfTheMoment) {
    const std::filesystem::path before = std::filesystem::current_path();
    const qrx::test::TemporaryFolder folder;
    const std::string inside = folder.makeFolder("a\nb");
    std::filesystem::current_path(inside);
    EXPECT_THAT(runBothWays(tool_.asked({"world"})).standardOutput,
                testing::HasSubstr("folder " + inside + "\n"));
    runBothWays(tool_.asked({"world"}));
    std::filesystem::remove(inside);
    runBothWays(tool_.asked({"world"}));
    std::filesystem::current_path(before);
    runBothWays(tool_.asked({"world"}));
    EXPECT_EQ(warm_.pool().counts().parentsStarted, 1U);
}

TEST_F(WarmProcessRunnerTest, WarmParentKeepsNoFolderBusy) {
    (void)warm_.run(tool_.asked({"world"}));
    const auto parents = warm_.pool().idleParents();
    ASSERT_EQ(parents.size(), 1U);
    const std::filesystem::path process = "/proc/" + std::to_string(parents.front());
    EXPECT_EQ(std::filesystem::read_symlink(process / "cwd"), "/");
    std::vector<std::string> open;
    for (const auto& entry : std::filesystem::directory_iterator(process / "fd")) {
        open.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(open, testing::UnorderedElementsAre("0", "1", "2", "3"));
}

TEST_F(WarmProcessRunnerTest, FileCreationMaskIsThatOfTheMoment) {
    for (const mode_t mask : {0U, 077U, 0777U, 022U}) {
        SCOPED_TRACE(mask);
        const mode_t before = ::umask(mask);
        runBothWays(tool_.asked({"world"}));
        ::umask(before);
    }
    EXPECT_EQ(warm_.pool().counts().parentsStarted, 1U);
}

TEST_F(WarmProcessRunnerTest, ChangedEnvironmentReachesTheNextRun) {
    (void)warm_.run(tool_.asked({"quiet"}));
    ::setenv("QRX_TEST_VARIABLE", "new", 1);
    EXPECT_THAT(runBothWays(tool_.asked({"world"})).standardOutput,
                testing::HasSubstr("variable QRX_TEST_VARIABLE=new\n"));
    ::unsetenv("QRX_TEST_VARIABLE");
    EXPECT_THAT(runBothWays(tool_.asked({"world"})).standardOutput,
                testing::Not(testing::HasSubstr("QRX_TEST_VARIABLE")));
    ::setenv("FFREPORT", "file=/tmp/x", 1);
    EXPECT_THAT(runBothWays(tool_.asked({"world"})).standardOutput,
                testing::Not(testing::HasSubstr("FFREPORT")));
    ::unsetenv("FFREPORT");
}

TEST_F(WarmProcessRunnerTest, WhatAUserPreloadsStaysPreloaded) {
    for (const std::string preloaded : {"libm.so.6", "libm.so.6:libdl.so.2", ""}) {
        SCOPED_TRACE(preloaded);
        ::setenv("LD_PRELOAD", preloaded.c_str(), 1);
        const std::string expected = "variable LD_PRELOAD=" + preloaded + "\n";
        for (ProcessRunner* const runner : std::vector<ProcessRunner*>{&plain_, &warm_}) {
            EXPECT_THAT(runner->run(tool_.asked({"world"})).standardOutput,
                        testing::AllOf(testing::HasSubstr(expected),
                                       testing::Not(testing::HasSubstr("qrxwarm"))));
        }
    }
    ::unsetenv("LD_PRELOAD");
    EXPECT_EQ(warm_.pool().counts().warmRuns, 3U);
}

TEST_F(WarmProcessRunnerTest, WhatAUserTunesStaysTuned) {
    ::setenv("GLIBC_TUNABLES", "glibc.malloc.top_pad=65536", 1);
    EXPECT_THAT(runBothWays(tool_.asked({"world"})).standardOutput,
                testing::HasSubstr("variable GLIBC_TUNABLES=glibc.malloc.top_pad=65536\n"));
    ::setenv("GLIBC_TUNABLES", "", 1);
    EXPECT_THAT(runBothWays(tool_.asked({"world"})).standardOutput,
                testing::HasSubstr("variable GLIBC_TUNABLES=\n"));
    ::unsetenv("GLIBC_TUNABLES");
}

TEST_F(WarmProcessRunnerTest, ChangedLimitsReachTheNextRun) {
    (void)warm_.run(tool_.asked({"quiet"}));
    rlimit before{};
    ::getrlimit(RLIMIT_CORE, &before);
    rlimit changed = before;
    changed.rlim_cur = before.rlim_cur == 0 ? std::min<rlim_t>(before.rlim_max, 4096) : 0;
    ::setrlimit(RLIMIT_CORE, &changed);
    runBothWays(tool_.asked({"world"}));
    ::setrlimit(RLIMIT_CORE, &before);
}

TEST_F(WarmProcessRunnerTest, SignalsOfOursDoNotReachTheTool) {
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto pipeBefore = std::signal(SIGPIPE, SIG_IGN);
    runBothWays(tool_.asked({"world"}));
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGPIPE, pipeBefore);
}

TEST_F(WarmProcessRunnerTest, DescriptorsOfOursDoNotReachTheTool) {
    std::vector<int> opened;
    for (int i = 0; i < 64; ++i) {
        opened.push_back(::open("/dev/null", O_RDONLY));  // without close-on-exec
    }
    runBothWays(tool_.asked({"world"}));
    for (const int descriptor : opened) {
        ::close(descriptor);
    }
}

TEST_F(WarmProcessRunnerTest, ClosedStandardInputIsClosedInTheToolToo) {
    const int original = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 100);
    ::close(STDIN_FILENO);
    const ProcessRequest request = tool_.asked({"world"});
    const std::string plain = plain_.run(request).standardOutput;
    const std::string warm = warm_.run(request).standardOutput;
    ::dup2(original, STDIN_FILENO);
    ::close(original);
    EXPECT_EQ(warm, plain);
    EXPECT_THAT(warm, testing::Not(testing::HasSubstr("descriptor 0")));
}

TEST_F(WarmProcessRunnerTest, ChildIsOurOwnAndInItsOwnGroup) {
    EXPECT_EQ(runBothWays(tool_.asked({"parents"})).standardOutput,
              std::to_string(::getpid()) + " 1");
}

TEST_F(WarmProcessRunnerTest, EveryRunIsAProcessOfItsOwn) {
    const std::string first = warm_.run(tool_.asked({"pid"})).standardOutput;
    const std::string second = warm_.run(tool_.asked({"pid"})).standardOutput;
    EXPECT_NE(first, second);
}

TEST_F(WarmProcessRunnerTest, OnlyQuestionsAboutFilesAreWarm) {
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(warm_.run({tool_.path(), {"x", "exit", "5"}, StandardError::captured}).exitStatus,
                  5);
        EXPECT_EQ(warm_.run({"/bin/echo", {"a"}, StandardError::captured}).standardOutput, "a\n");
    }
    EXPECT_EQ(warm_.pool().counts().parentsStarted, 0U);
}

TEST_F(WarmProcessRunnerTest, FirstRunIsPlainUnlessChosenOtherwise) {
    WarmProcessRunner runner;
    for (int run = 0; run < 3; ++run) {
        EXPECT_EQ(runner.pool().counts().warmRuns, run < 1 ? 0U : static_cast<unsigned>(run - 1));
        EXPECT_EQ(runner.run(tool_.asked({"exit", "3"})).exitStatus, 3);
    }
    EXPECT_EQ(runner.pool().counts().parentsStarted, 1U);
}

TEST_F(WarmProcessRunnerTest, ChangedFileIsStartedAnew) {
    EXPECT_EQ(runBothWays(tool_.asked({"exit", "3"})).exitStatus, 3);
    const std::string other = tool_.folder() / "other";
    std::filesystem::copy_file(QRX_WARM_TOOL_THAT_BUFFERS, other);
    std::filesystem::rename(other, tool_.path());
    EXPECT_EQ(runBothWays(tool_.asked({"quiet"})).standardOutput, "buffered\n");
    EXPECT_EQ(warm_.pool().counts().parentsStarted, 2U);
    ::chmod(tool_.path().c_str(), 0700);
    runBothWays(tool_.asked({"quiet"}));
    EXPECT_EQ(warm_.pool().counts().parentsStarted, 3U);
    EXPECT_EQ(tool_.processes().size(), 1U) << "the parents of before are ended";
}

TEST_F(WarmProcessRunnerTest, AnotherProgramHasAParentOfItsOwn) {
    const ToolCopy other(QRX_WARM_TOOL_THAT_BUFFERS);
    EXPECT_EQ(runBothWays(tool_.asked({"quiet"})).standardOutput, "");
    EXPECT_EQ(runBothWays(other.asked({"quiet"})).standardOutput, "buffered\n");
    EXPECT_EQ(runBothWays(tool_.asked({"quiet"})).standardOutput, "");
    EXPECT_EQ(warm_.pool().counts().parentsStarted, 3U);
}

TEST_F(WarmProcessRunnerTest, RemovedToolCannotBeStarted) {
    (void)warm_.run(tool_.asked({"quiet"}));
    std::filesystem::remove(tool_.path());
    EXPECT_THROW((void)warm_.run(tool_.asked({"quiet"})), std::system_error);
}

TEST_F(WarmProcessRunnerTest, ToolThatMayNotBeRunAnyMoreCannotBeStarted) {
    (void)warm_.run(tool_.asked({"quiet"}));
    ::chmod(tool_.path().c_str(), 0600);
    EXPECT_THROW((void)warm_.run(tool_.asked({"quiet"})), std::system_error);
}

}  // namespace
}  // namespace qrx::platform
