#include <array>
#include <chrono>
#include <csignal>
#include <future>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "app/LineWriter.h"
#include "support/TemporaryFolder.h"

namespace qrx {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

platform::BusDescriptor owned(int descriptor) {
    return {new int(descriptor), [](const int* held) {
                ::close(*held);
                delete held;
            }};
}

std::string allFrom(int descriptor) {
    std::string text;
    std::array<char, 10'000> buffer{};
    ssize_t count = 0;
    while ((count = ::read(descriptor, buffer.data(), buffer.size())) > 0) {
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return text;
}

class LineWriterTest : public testing::Test {
protected:
    LineWriterTest() {
        std::signal(SIGPIPE, SIG_IGN);  // as the service does
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        writeEnd = owned(ends[1]);
    }
    ~LineWriterTest() override { closeReadEnd(); }

    void closeReadEnd() {
        if (ends[0] >= 0) ::close(ends[0]);
        ends[0] = -1;
    }
    [[nodiscard]] LineWriter writer(milliseconds limit = seconds{20}) {
        return {std::exchange(writeEnd, nullptr), limit, cancel.get_token()};
    }

    std::array<int, 2> ends{};
    platform::BusDescriptor writeEnd;
    std::stop_source cancel;
    const std::string large = std::string(1'000'000, 'x') + "\n";
};

TEST_F(LineWriterTest, ClosesWithTheLastCopy) {
    {
        LineWriter one = writer();
        one.write("a\n");
        one.write("");
        one.write("b\n");
    }
    EXPECT_EQ(allFrom(ends[0]), "a\nb\n");
}

TEST_F(LineWriterTest, WaitsForASlowReader) {
    auto text = std::async(std::launch::async, [&] {
        std::this_thread::sleep_for(milliseconds{50});
        return allFrom(ends[0]);
    });
    {
        LineWriter one = writer();
        one.write(large);
    }
    EXPECT_EQ(text.get(), large);
}

TEST_F(LineWriterTest, TakesADescriptorThatDoesNotBlock) {
    ::fcntl(ends[1], F_SETFL, O_NONBLOCK);
    auto text = std::async(std::launch::async, [&] { return allFrom(ends[0]); });
    {
        LineWriter one = writer();
        one.write(large);
    }
    EXPECT_EQ(text.get(), large);
}

TEST_F(LineWriterTest, ReaderThatTakesNothingEndsIt) {
    LineWriter one = writer(milliseconds{50});
    EXPECT_THROW(one.write(large), ReaderStalled);
}

TEST_F(LineWriterTest, ReaderThatLeavesEndsIt) {
    LineWriter one = writer();
    closeReadEnd();
    EXPECT_THROW(one.write("a\n"), ReaderGone);
}

TEST_F(LineWriterTest, ReaderThatLeavesInTheMiddleEndsIt) {
    LineWriter one = writer();
    std::thread leaving([&] {
        std::this_thread::sleep_for(milliseconds{50});
        closeReadEnd();
    });
    EXPECT_THROW(one.write(large), ReaderGone);
    leaving.join();
}

TEST_F(LineWriterTest, CallerThatLeavesEndsIt) {
    LineWriter one = writer();
    std::thread leaving([&] {
        std::this_thread::sleep_for(milliseconds{50});
        cancel.request_stop();
    });
    EXPECT_THROW(one.write(large), WritingCancelled);
    leaving.join();
    EXPECT_THROW(one.write("a\n"), WritingCancelled);
}

TEST_F(LineWriterTest, WritesToFilesAndSockets) {
    const test::TemporaryFolder folder;
    const std::string path = folder / "clips";
    {
        LineWriter file(owned(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)),
                        seconds{20}, {});
        file.write(large);
    }
    EXPECT_EQ(test::fileContents(path), large);
    std::array<int, 2> pair{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair.data()), 0);
    {
        LineWriter socket(owned(pair[1]), seconds{20}, {});
        socket.write("a\n");
    }
    EXPECT_EQ(allFrom(pair[0]), "a\n");
    ::close(pair[0]);
}

TEST_F(LineWriterTest, DescriptorThatCannotBeWrittenEndsIt) {
    LineWriter one(owned(::open("/dev/null", O_RDONLY | O_CLOEXEC)), seconds{20}, {});
    EXPECT_THROW(one.write("a\n"), ReaderGone);
}

}  // namespace
}  // namespace qrx
