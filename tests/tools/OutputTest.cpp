#include <cerrno>
#include <csignal>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "qrx/Output.h"
#include "support/TemporaryFolder.h"

namespace qrx::tool {
namespace {

using test::TemporaryFolder;

class OutputTest : public testing::Test {
protected:
    int opened(const std::string& path, int flags) {
        const int file = ::open(path.c_str(), flags | O_CLOEXEC, 0600);
        EXPECT_GE(file, 0);
        return file;
    }

    TemporaryFolder folder;
};

TEST_F(OutputTest, EverythingArrivesInOrder) {
    const int file = opened(folder / "out", O_CREAT | O_WRONLY);
    Output output(file);
    std::string expected;
    for (int line = 0; line < 20'000; ++line) {
        const std::string text = "line " + std::to_string(line) + "\n";
        output.write(text);
        expected += text;
    }
    EXPECT_EQ(output.finish(), 0);
    EXPECT_EQ(test::fileContents(folder / "out"), expected);
    ::close(file);
}

TEST_F(OutputTest, NothingIsWrittenBeforeItIsFlushed) {
    const int file = opened(folder / "out", O_CREAT | O_WRONLY);
    Output output(file);
    output.write("text");
    EXPECT_EQ(test::fileContents(folder / "out"), "");
    output.flush();
    EXPECT_EQ(test::fileContents(folder / "out"), "text");
    ::close(file);
}

TEST_F(OutputTest, FullDiskIsRemembered) {
    const int file = opened("/dev/full", O_WRONLY);
    Output output(file);
    output.write("text");
    EXPECT_TRUE(output.isGood());
    output.flush();
    EXPECT_FALSE(output.isGood());
    output.write("more");
    EXPECT_EQ(output.finish(), ENOSPC);
    ::close(file);
}

TEST_F(OutputTest, ClosedPipeIsRemembered) {
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ::close(ends[0]);
    Output output(ends[1]);
    output.write("text");
    EXPECT_EQ(output.finish(), EPIPE);
    ::close(ends[1]);
    std::signal(SIGPIPE, before);
}

TEST_F(OutputTest, StreamThatWasNeverOpenIsAnErrorOnceItIsUsed) {
    const int file = opened("/dev/null", O_RDONLY);
    Output unused(file);
    EXPECT_EQ(unused.finish(), 0);
    Output used(file);
    used.write("text");
    EXPECT_EQ(used.finish(), EBADF);
    ::close(file);
}

}  // namespace
}  // namespace qrx::tool
