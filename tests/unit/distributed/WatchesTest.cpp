#include "distributed/HostWatch.h"
#include "distributed/ParentWatch.h"
#include "unit/distributed/DistributedFixture.h"

namespace qrx {
namespace {

class WatchesTest : public test::DistributedTest {};

const std::vector<std::string> kTitles{"Quillfen"};

struct NameCase {
    const char* name;
    const char* displayName;
    bool isHost;
};

class HostName : public WatchesTest, public testing::WithParamInterface<NameCase> {};

TEST_P(HostName, CountsWhenItContainsTheTitle) {
    applications->start(10, "init");
    applications->start(20, GetParam().displayName);
    EXPECT_EQ(hostIsRunning(kTitles), GetParam().isHost);
}

constexpr NameCase kNames[] = {
    {"Title", "Quillfen", true},         {"WithVersion", "Quillfen 10.5", true},
    {"Inside", "MyQuillfenHost", true},  {"LowerCase", "quillfen", false},
    {"InTwoPieces", "Quill fen", false}, {"Other", "bash", false},
};

INSTANTIATE_TEST_SUITE_P(Table, HostName, testing::ValuesIn(kNames),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(WatchesTest, AnyOfTheNamesOfAProcessCounts) {
    applications->running = {{7, {"python3.11", "worker", "Quillfen"}}};
    EXPECT_TRUE(hostIsRunning(kTitles));
}

TEST_F(WatchesTest, AnyOfTheTitlesCounts) {
    applications->start(1, "Other Host");
    EXPECT_TRUE(hostIsRunning({"Quillfen", "Other"}));
    EXPECT_FALSE(hostIsRunning({}));
}

TEST_F(WatchesTest, NothingRunsNoHost) {
    EXPECT_FALSE(hostIsRunning(kTitles));
}

TEST_F(WatchesTest, PsIsAskedForOneProcess) {
    psLists(123);
    EXPECT_TRUE(processIsListed(123));
    EXPECT_EQ(runner->requests().back().program, kPs);
    EXPECT_EQ(runner->requests().back().arguments, std::vector<std::string>{"123"});
}

TEST_F(WatchesTest, OutputWithoutTheIdentifierIsNo) {
    psDoesNotList(123);
    EXPECT_FALSE(processIsListed(123));
}

TEST_F(WatchesTest, EmptyOutputIsNo) {
    runner->answer(kPs, platform::FakeProcessRunner::wrote(""));
    EXPECT_FALSE(processIsListed(123));
}

TEST_F(WatchesTest, PsThatCannotBeRunIsNo) {
    runner->answerBy(kPs, [](const platform::ProcessRequest&) -> platform::ProcessResult {
        throw std::system_error(ENOEXEC, std::generic_category(), "ps");
    });
    EXPECT_FALSE(processIsListed(123));
}

TEST_F(WatchesTest, PsThatIsNotThereIsNo) {
    runner->answer("/usr/bin/whereis", platform::FakeProcessRunner::wrote("ps:\n"));
    psLists(123);
    EXPECT_FALSE(processIsListed(123));
}

TEST_F(WatchesTest, LongerNumberThatContainsTheIdentifierCounts) {
    runner->answer(kPs, platform::FakeProcessRunner::wrote("91234 ? S 0:00 other\n"));
    EXPECT_TRUE(processIsListed(123));
}

}  // namespace
}  // namespace qrx
