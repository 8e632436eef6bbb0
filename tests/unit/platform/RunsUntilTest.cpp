#include <chrono>
#include <stop_token>
#include <thread>

#include <gtest/gtest.h>

#include "platform/linux/PosixProcessRunner.h"

namespace qrx::platform {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

const ProcessRequest kLongRun{"/bin/sleep", {"30"}};
const ProcessRequest kShortRun{"/bin/echo", {"there"}};

TEST(RunsUntil, StopEndsTheToolUnderWay) {
    PosixProcessRunner runner;
    std::stop_source request;
    const RunsUntil scope(request.get_token());
    std::thread stopping([&] {
        std::this_thread::sleep_for(milliseconds{50});
        request.request_stop();
    });
    const auto begin = steady_clock::now();
    EXPECT_THROW(static_cast<void>(runner.run(kLongRun)), RunCancelled);
    EXPECT_LT(steady_clock::now() - begin, seconds{20});
    stopping.join();
}

TEST(RunsUntil, NothingIsStartedAfterTheStop) {
    PosixProcessRunner runner;
    std::stop_source request;
    request.request_stop();
    const RunsUntil scope(request.get_token());
    EXPECT_THROW(static_cast<void>(runner.run(kShortRun)), RunCancelled);
}

TEST(RunsUntil, OtherThreadsAndLaterRequestsGoOn) {
    PosixProcessRunner runner;
    std::stop_source request;
    request.request_stop();
    {
        const RunsUntil scope(request.get_token());
        std::thread other([&] { EXPECT_EQ(runner.run(kShortRun).standardOutput, "there\n"); });
        other.join();
        {
            const RunsUntil inner{std::stop_token()};
            EXPECT_EQ(runner.run(kShortRun).standardOutput, "there\n");
        }
        EXPECT_THROW(static_cast<void>(runner.run(kShortRun)), RunCancelled);
    }
    EXPECT_FALSE(RunsUntil::current().stop_possible());
    EXPECT_EQ(runner.run(kShortRun).standardOutput, "there\n");
}

}  // namespace
}  // namespace qrx::platform
