#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/GlibMainThread.h"
#include "support/Callers.h"

namespace qrx::platform {
namespace {

using namespace std::chrono_literals;

/// A main thread that serves, until this goes.
class Served {
public:
    Served() : thread_([this] { status_ = main_.serve(); }) {
        while (!servantIs(thread_.get_id())) {
            std::this_thread::sleep_for(1ms);
        }
    }
    ~Served() { static_cast<void>(end()); }
    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

    GlibMainThread& main() { return main_; }
    [[nodiscard]] std::thread::id servant() const { return thread_.get_id(); }
    [[nodiscard]] int end() {
        if (thread_.joinable()) {
            main_.terminate();
            thread_.join();
        }
        return status_;
    }

private:
    bool servantIs(std::thread::id expected) {
        std::thread::id seen;
        main_.runAndWait([&] { seen = std::this_thread::get_id(); });
        return seen == expected;
    }

    GlibMainThread main_{{}, [] {}};
    int status_ = -1;
    std::thread thread_;
};

TEST(GlibMainThreadWithoutLoop, WorkIsDoneOnTheCaller) {
    GlibMainThread main;
    std::thread::id seen;
    EXPECT_FALSE(main.isCurrent());
    main.runAndWait([&] {
        seen = std::this_thread::get_id();
        EXPECT_TRUE(main.isCurrent());
    });
    EXPECT_EQ(seen, std::this_thread::get_id());
    EXPECT_FALSE(main.isCurrent());
}

TEST(GlibMainThreadWithoutLoop, WorkMayAskForWork) {
    GlibMainThread main;
    int depth = 0;
    main.runAndWait([&] { main.runAndWait([&] { main.runAndWait([&] { depth = 3; }); }); });
    EXPECT_EQ(depth, 3);
}

TEST(GlibMainThreadWithoutLoop, OneThreadAtATime) {
    GlibMainThread main;
    int inside = 0;  // unguarded on purpose
    int most = 0;
    int done = 0;
    test::Callers callers(4, [&](int /*caller*/) {
        for (int round = 0; round < 200; ++round) {
            main.runAndWait([&] {
                most = std::max(most, ++inside);
                if (round % 50 == 0) std::this_thread::sleep_for(100us);
                --inside;
                ++done;
            });
        }
    });
    callers.wait();
    EXPECT_EQ(most, 1);
    EXPECT_EQ(done, 800);
}

TEST(GlibMainThreadWithoutLoop, FaultReachesTheCallerAndFreesTheThread) {
    GlibMainThread main;
    EXPECT_THROW(main.runAndWait([] { throw std::out_of_range("fault"); }), std::out_of_range);
    EXPECT_FALSE(main.isCurrent());
    bool done = false;
    std::thread([&] { main.runAndWait([&] { done = true; }); }).join();
    EXPECT_TRUE(done);
}

TEST(GlibMainThreadServing, WorkOfOthersIsDoneOnTheServingThread) {
    Served served;
    for (int round = 0; round < 100; ++round) {
        std::thread::id seen;
        served.main().runAndWait([&] {
            seen = std::this_thread::get_id();
            EXPECT_TRUE(served.main().isCurrent());
        });
        ASSERT_EQ(seen, served.servant());
    }
    EXPECT_FALSE(served.main().isCurrent());
}

TEST(GlibMainThreadServing, WorkMayAskForWork) {
    Served served;
    bool done = false;
    served.main().runAndWait([&] { served.main().runAndWait([&] { done = true; }); });
    EXPECT_TRUE(done);
}

TEST(GlibMainThreadServing, FaultReachesWhoAskedAndTheLoopGoesOn) {
    Served served;
    struct NoStandardFault {};
    EXPECT_THROW(served.main().runAndWait([] { throw std::out_of_range("fault"); }),
                 std::out_of_range);
    EXPECT_THROW(served.main().runAndWait([] { throw NoStandardFault{}; }), NoStandardFault);
    bool done = false;
    served.main().runAndWait([&] { done = true; });
    EXPECT_TRUE(done);
}

TEST(GlibMainThreadServing, ManyThreadsMayAskAtOnce) {
    Served served;
    int count = 0;  // only the serving thread touches it
    test::Callers callers(4, [&](int /*caller*/) {
        for (int round = 0; round < 100; ++round) {
            served.main().runAndWait([&] { ++count; });
        }
    });
    callers.wait();
    EXPECT_EQ(count, 400);
}

TEST(GlibMainThreadServing, StatusIsZeroAndItCanServeAgain) {
    GlibMainThread main({}, [] {});
    for (int round = 0; round < 20; ++round) {
        std::thread servant([&] { EXPECT_EQ(main.serve(), 0); });
        main.terminate();  // perhaps before the loop has begun
        servant.join();
    }
}

TEST(GlibMainThreadServing, NobodyHangsWhenTheLoopEnds) {
    for (int round = 0; round < 50; ++round) {
        Served served;
        std::atomic<int> done = 0;
        test::Callers callers(3, [&](int /*caller*/) {
            for (int work = 0; work < 20; ++work) {
                served.main().runAndWait([&] { ++done; });
            }
        });
        EXPECT_EQ(served.end(), 0);
        callers.wait();
        EXPECT_EQ(done, 60);
    }
}

TEST(GlibMainThreadTerminate, EndsTheToolsFirst) {
    std::vector<int> order;
    GlibMainThread main([&] { order.push_back(1); }, [&] { order.push_back(2); });
    main.terminate();
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST(GlibMainThreadTerminateDeathTest, EndsTheProcessWithStatusZeroFromAnyThread) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            GlibMainThread main;
            std::thread asker([&] { main.terminate(); });
            for (;;) {
                std::this_thread::sleep_for(1s);
            }
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace qrx::platform
