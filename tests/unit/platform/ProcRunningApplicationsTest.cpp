#include <algorithm>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/ProcRunningApplications.h"
#include "support/TemporaryFolder.h"

namespace qrx::platform {
namespace {

constexpr uid_t kUser = 1000;
constexpr uid_t kOtherUser = 1001;

struct ProcessEntry {
    int identifier = 0;
    std::string executable = {};   // target of the exe link; empty for none
    std::string commandLine = {};  // arguments, each with its NUL
    std::string task = {};         // without its line end
    std::string state = "S (sleeping)";
    uid_t realUser = kUser;
    uid_t effectiveUser = kUser;
};

/// A /proc of a test's own.
class ProcTree {
public:
    void add(const ProcessEntry& process) const {
        const std::string folder = "proc/" + std::to_string(process.identifier) + "/";
        tree_.write(folder + "status",
                    "Name:\t" + process.task + "\nUmask:\t0022\nState:\t" + process.state +
                        "\nTgid:\t1\nUid:\t" + std::to_string(process.realUser) + "\t" +
                        std::to_string(process.effectiveUser) + "\t0\t0\nGid:\t0\t0\t0\t0\n");
        tree_.write(folder + "comm", process.task + "\n");
        tree_.write(folder + "cmdline", process.commandLine);
        if (!process.executable.empty()) tree_.link(folder + "exe", process.executable);
    }
    [[nodiscard]] std::vector<RunningApplication> applications() const {
        return ProcRunningApplications(tree_.path(), kUser).applications();
    }
    [[nodiscard]] const test::TemporaryFolder& folder() const { return tree_; }

private:
    test::TemporaryFolder tree_;
};

using Names = std::vector<std::string>;

TEST(ProcRunningApplications, ShowsExecutableArgumentAndTaskNames) {
    const ProcTree proc;
    proc.add({.identifier = 100,
              .executable = "/usr/bin/python3.11",
              .commandLine = std::string("/opt/bin/Quillfen\0-x\0", 21),
              .task = "worker"});
    const auto running = proc.applications();
    ASSERT_EQ(running.size(), 1U);
    EXPECT_EQ(running[0].processIdentifier, 100);
    EXPECT_EQ(running[0].displayNames, (Names{"python3.11", "Quillfen", "worker"}));
}

TEST(ProcRunningApplications, TellsEachNameOnce) {
    const ProcTree proc;
    proc.add({.identifier = 7,
              .executable = "/opt/host",
              .commandLine = std::string("host\0", 5),
              .task = "host"});
    ASSERT_EQ(proc.applications().size(), 1U);
    EXPECT_EQ(proc.applications()[0].displayNames, Names{"host"});
}

TEST(ProcRunningApplications, ExecutableThatWasReplacedKeepsItsName) {
    const ProcTree proc;
    proc.add({.identifier = 7, .executable = "/opt/Quillfen 5 (deleted)", .task = "x"});
    EXPECT_EQ(proc.applications().at(0).displayNames, (Names{"Quillfen 5", "x"}));
}

TEST(ProcRunningApplications, UnreadableExecutableLeavesTheOtherNames) {
    const ProcTree proc;
    proc.add({.identifier = 7, .commandLine = std::string("tool\0", 5), .task = "task"});
    EXPECT_EQ(proc.applications().at(0).displayNames, (Names{"tool", "task"}));
}

TEST(ProcRunningApplications, LeavesOutOtherUsers) {
    const ProcTree proc;
    proc.add({.identifier = 7, .task = "theirs", .realUser = kOtherUser, .effectiveUser = kUser});
    proc.add({.identifier = 8, .task = "mine", .realUser = kUser, .effectiveUser = 0});
    const auto running = proc.applications();
    ASSERT_EQ(running.size(), 1U);
    EXPECT_EQ(running[0].processIdentifier, 8);
}

TEST(ProcRunningApplications, LeavesOutTheDead) {
    const ProcTree proc;
    proc.add({.identifier = 7, .task = "Quillfen", .state = "Z (zombie)"});
    proc.add({.identifier = 8, .task = "Quillfen", .state = "X (dead)"});
    EXPECT_TRUE(proc.applications().empty());
}

TEST(ProcRunningApplications, LeavesOutThisProcess) {
    const ProcTree proc;
    proc.add({.identifier = static_cast<int>(::getpid()), .task = "Quillfen"});
    EXPECT_TRUE(proc.applications().empty());
}

TEST(ProcRunningApplications, OrdersByIdentifierAndPassesOverWhatIsNoProcess) {
    const ProcTree proc;
    for (const int identifier : {1000, 9, 30})
        proc.add({.identifier = identifier, .task = "t"});
    proc.folder().write("proc/meminfo", "1");
    proc.folder().makeFolder("proc/12x");
    proc.folder().makeFolder("proc/55");  // went away between the listing and the look
    const auto running = proc.applications();
    ASSERT_EQ(running.size(), 3U);
    EXPECT_EQ(running[0].processIdentifier, 9);
    EXPECT_EQ(running[1].processIdentifier, 30);
    EXPECT_EQ(running[2].processIdentifier, 1000);
}

TEST(ProcRunningApplications, NothingWithoutProc) {
    const test::TemporaryFolder empty;
    EXPECT_TRUE(ProcRunningApplications(empty.path(), kUser).applications().empty());
}

TEST(ProcRunningApplications, RealZombieIsNotTold) {
    const ProcRunningApplications real;
    EXPECT_EQ(real.currentProcessIdentifier(), ::getpid());
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) ::_exit(0);
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    const auto isTold = [&] {
        const auto running = real.applications();
        return std::any_of(running.begin(), running.end(),
                           [&](const auto& one) { return one.processIdentifier == child; });
    };
    EXPECT_FALSE(isTold());
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
}

TEST(ProcRunningApplications, RealChildIsToldByItsName) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::pause();
        ::_exit(0);
    }
    const auto running = ProcRunningApplications().applications();
    const auto told = std::find_if(running.begin(), running.end(),
                                   [&](const auto& one) { return one.processIdentifier == child; });
    EXPECT_NE(told, running.end());
    if (told != running.end()) {
        EXPECT_FALSE(told->displayNames.empty());
    }
    ::kill(child, SIGKILL);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
}

struct ArgumentCase {
    const char* name;
    const char* argument;
    const char* program;  // null: not a program
};

class ProgramName : public testing::TestWithParam<ArgumentCase> {};

TEST_P(ProgramName, IsReadFromTheFirstArgument) {
    const auto name = programNameFromArgument(GetParam().argument);
    if (GetParam().program == nullptr) {
        EXPECT_EQ(name, std::nullopt);
    } else {
        EXPECT_EQ(name, GetParam().program);
    }
}

constexpr ArgumentCase kArguments[] = {
    {"Path", "/opt/Quillfen/bin/Quillfen", "Quillfen"},
    {"RelativePath", "./Quillfen", "Quillfen"},
    {"Name", "Quillfen", "Quillfen"},
    {"NameWithVersion", "Quillfen 10.5", "Quillfen 10.5"},
    {"BlankInAFolder", "/opt/Quillfen Studio/host", "host"},
    {"DashBetweenBlanks", "/opt/Quillfen - Beta", "Quillfen - Beta"},
    {"LoginShell", "-bash", "-bash"},
    {"Title", "worker: Quillfen queue", nullptr},
    {"TitleWithPath", "nginx: master process /usr/sbin/Quillfen", nullptr},
    {"TitleWithoutText", "Quillfen:", nullptr},
    {"WholeCommandLine", "/opt/browser --user-data-dir=/home/me/Quillfen", nullptr},
    {"CommandLineWithAPath", "viewer /home/me/Quillfen", nullptr},
    {"FolderOnly", "/opt/", nullptr},
    {"Empty", "", nullptr},
};

INSTANTIATE_TEST_SUITE_P(Table, ProgramName, testing::ValuesIn(kArguments),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace qrx::platform
