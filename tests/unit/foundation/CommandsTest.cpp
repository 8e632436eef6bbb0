#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/Commands.h"
#include "foundation/QRXFileSystemUtility.h"
#include "platform/fake/FakeProcessRunner.h"
#include "platform/fake/RecordingSystemLog.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using platform::FakeProcessRunner;
using testing::ElementsAre;
using testing::IsEmpty;

const FilePath kShell = "/bin/sh";

/// The real runner, with the log recorded.
class CommandsTest : public testing::Test {
protected:
    CommandsTest() { services_->systemLog = log_; }

    static FilePath program(const test::TemporaryFolder& folder, std::string_view name) {
        FilePath path = folder.write(name, "#!/bin/sh\nexit 0\n");
        ::chmod(path.c_str(), 0755);
        return path;
    }

    platform::ScopedServices services_;
    std::shared_ptr<platform::RecordingSystemLog> log_ =
        std::make_shared<platform::RecordingSystemLog>();
    QRXFileSystemUtility utility_;
};

TEST_F(CommandsTest, ToolIsAvailableWhereAnythingExists) {
    const test::TemporaryFolder folder;
    EXPECT_TRUE(utility_.terminalCommandPathIsAvailable(kShell));
    EXPECT_TRUE(utility_.terminalCommandPathIsAvailable(folder.path()));
    EXPECT_FALSE(utility_.terminalCommandPathIsAvailable(folder / "missing"));
    EXPECT_FALSE(utility_.terminalCommandPathIsAvailable(folder.link("dangling", "nowhere")));
    EXPECT_FALSE(utility_.terminalCommandPathIsAvailable(""));
}

TEST_F(CommandsTest, OutputComesWithoutItsNewlines) {
    EXPECT_EQ(utility_.executeTerminalCommand(kShell, {"-c", "printf 'a\\n\\nb c\\r\\n'"}),
              "ab c\r");
}

TEST_F(CommandsTest, DelimitedOutputKeepsItsNewlines) {
    EXPECT_EQ(utility_.executeTerminalCommandWithDelimitedArguments(
                  kShell, {"-c", "printf 'a\\n\\nb c\\n'"}, true),
              "a\n\nb c\n");
}

TEST_F(CommandsTest, OutputOfAFailingToolIsAnswered) {
    EXPECT_EQ(utility_.executeTerminalCommand(kShell, {"-c", "echo partly; exit 9"}), "partly");
    EXPECT_EQ(utility_.executeTerminalCommand(kShell, {"-c", "exit 9"}), "");
}

TEST_F(CommandsTest, StandardErrorIsNotAnswered) {
    EXPECT_EQ(
        utility_.executeTerminalCommand(kShell, {"-c", "exec 2>/dev/null; echo e >&2; echo o"}),
        "o");
}

TEST_F(CommandsTest, EachArgumentReachesTheToolUnchanged) {
    EXPECT_EQ(utility_.executeTerminalCommand("/usr/bin/printf", {"[%s]", "a b", "$(id)", "`id`"}),
              "[a b][$(id)][`id`]");
}

TEST_F(CommandsTest, OutputThatIsNotUtf8IsKeptByteForByte) {
    EXPECT_EQ(utility_.executeTerminalCommand("/usr/bin/printf", {"clip\\377.mts"}),
              "clip\xFF.mts");
}

TEST_F(CommandsTest, MissingToolIsNotRunWhenAskedToEnsure) {
    const auto runner = std::make_shared<FakeProcessRunner>();
    services_->processRunner = runner;
    EXPECT_EQ(utility_.executeTerminalCommand("/missing/tool", {}), std::nullopt);
    EXPECT_EQ(utility_.executeTerminalCommand("/missing/tool", {}, true), std::nullopt);
    EXPECT_EQ(utility_.executeTerminalCommandWithDelimitedArguments("/missing/tool", {"a"}, true),
              std::nullopt);
    EXPECT_THAT(runner->requests(), IsEmpty());
    EXPECT_THAT(log_->notices(), IsEmpty());
}

TEST_F(CommandsTest, ToolThatCannotBeLaunchedIsLogged) {
    EXPECT_EQ(utility_.executeTerminalCommand("/missing/tool", {}, false), std::nullopt);
    EXPECT_THAT(log_->notices(), ElementsAre("Ex"));
}

TEST_F(CommandsTest, DelimitedFormDoesNotCatch) {
    EXPECT_THROW(
        (void)utility_.executeTerminalCommandWithDelimitedArguments("/missing/tool", {}, false),
        std::system_error);
    EXPECT_THAT(log_->notices(), IsEmpty());
}

TEST_F(CommandsTest, CancelledRunIsNoFault) {
    const auto runner = std::make_shared<FakeProcessRunner>();
    services_->processRunner = runner;
    runner->cancelAll();
    EXPECT_EQ(utility_.executeTerminalCommand(kShell, {}), std::nullopt);
    EXPECT_EQ(utility_.pathForTerminalCommand("sh"), std::nullopt);
    EXPECT_THAT(log_->notices(), IsEmpty());
    EXPECT_THROW((void)utility_.executeTerminalCommandWithDelimitedArguments(kShell, {}, true),
                 platform::RunCancelled);
}

TEST_F(CommandsTest, FindsAnInstalledTool) {
    const std::optional<FilePath> found = utility_.pathForTerminalCommand("sh");
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->ends_with("/sh")) << *found;
    EXPECT_TRUE(utility_.terminalCommandPathIsAvailable(*found));
}

TEST_F(CommandsTest, ToolThatIsNotInstalledHasNoPath) {
    EXPECT_EQ(utility_.pathForTerminalCommand("no-such-tool-anywhere"), std::nullopt);
    EXPECT_EQ(utility_.pathForTerminalCommand(""), std::nullopt);
    EXPECT_THAT(log_->notices(), IsEmpty());
}

TEST_F(CommandsTest, WhereisIsAskedForProgramsOnly) {
    const test::TemporaryFolder folder;
    const FilePath tool = program(folder, "cmp");
    const auto runner = std::make_shared<FakeProcessRunner>();
    services_->processRunner = runner;
    runner->answer("/usr/bin/whereis", {"-b", "cmp"},
                   FakeProcessRunner::wrote("cmp: " + tool + "\n"));
    EXPECT_EQ(utility_.pathForTerminalCommand("cmp"), tool);
}

TEST_F(CommandsTest, WhereisThatCannotBeRunIsLogged) {
    services_->processRunner = std::make_shared<FakeProcessRunner>();
    EXPECT_EQ(utility_.pathForTerminalCommand("cmp"), std::nullopt);
    EXPECT_THAT(log_->notices(), ElementsAre("Ex"));
}

TEST_F(CommandsTest, FirstExecutableRegularFileOfTheLineCounts) {
    const test::TemporaryFolder folder;
    const FilePath notExecutable = folder.write("manual.1.gz");
    const FilePath subFolder = folder.makeFolder("tool");
    const FilePath first = program(folder, "bin/tool");
    const FilePath second = program(folder, "sbin/tool");
    const FilePath linked = folder.link("linked", first);
    ::chmod(notExecutable.c_str(), 0644);
    EXPECT_EQ(firstProgramNamedIn("tool: /missing " + notExecutable + " " + subFolder + " " +
                                  first + " " + second),
              first);
    EXPECT_EQ(firstProgramNamedIn("tool: " + linked), linked);
}

TEST_F(CommandsTest, LineWithoutAProgramGivesNothing) {
    const test::TemporaryFolder folder;
    const FilePath tool = program(folder, "tool");
    EXPECT_EQ(firstProgramNamedIn(""), std::nullopt);
    EXPECT_EQ(firstProgramNamedIn("tool:"), std::nullopt);
    EXPECT_EQ(firstProgramNamedIn("tool: "), std::nullopt);
    EXPECT_EQ(firstProgramNamedIn(tool), std::nullopt) << "nothing stands after a colon";
    EXPECT_EQ(firstProgramNamedIn("tool: bin/sh sh ."), std::nullopt) << "no full path";
}

}  // namespace
}  // namespace qrx
