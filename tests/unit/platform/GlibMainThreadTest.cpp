#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include <glib.h>
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

// ---- waiting for others who may ask for work

/// Others that each have `rounds` pieces of work done, and who waits for them all.
class Asking {
public:
    Asking(GlibMainThread& main, int others, int rounds)
        : main_(main), left_(others), callers_(others, [this, rounds](int /*caller*/) {
              for (int round = 0; round < rounds; ++round) {
                  main_.runAndWait([this] {
                      ++done;
                      doers.insert(std::this_thread::get_id());
                  });
              }
              --left_;
              main_.wake();
          }) {}

    void waitServing() {
        main_.waitServing([this] { return left_ == 0; });
    }

    int done = 0;  // unguarded on purpose, like the next
    std::set<std::thread::id> doers;

private:
    GlibMainThread& main_;
    std::atomic<int> left_;
    test::Callers callers_;
};

TEST(GlibMainThreadWaiting, ServingThreadDoesTheWorkOfThoseItWaitsFor) {
    Served served;
    served.main().runAndWait([&] {
        Asking others(served.main(), 4, 50);
        others.waitServing();
        EXPECT_EQ(others.done, 200);
        EXPECT_EQ(others.doers, std::set{served.servant()});
    });
    bool goesOn = false;
    served.main().runAndWait([&] { goesOn = true; });
    EXPECT_TRUE(goesOn);
}

TEST(GlibMainThreadWaiting, WithoutALoopWhoeverIsAtWorkDoesTheWorkOfThoseItWaitsFor) {
    GlibMainThread main;
    main.runAndWait([&] {
        Asking others(main, 4, 50);
        others.waitServing();
        EXPECT_EQ(others.done, 200);
        EXPECT_EQ(others.doers, std::set{std::this_thread::get_id()});
    });
    EXPECT_FALSE(main.isCurrent());
}

TEST(GlibMainThreadWaiting, AnyOtherThreadOnlyWaits) {
    GlibMainThread main;
    Asking others(main, 4, 50);
    others.waitServing();
    EXPECT_EQ(others.done, 200);
    EXPECT_EQ(others.doers.count(std::this_thread::get_id()), 0U);
}

TEST(GlibMainThreadWaiting, WorkThatIsDoneMeanwhileMayWaitItself) {
    Served served;
    served.main().runAndWait([&] {
        std::atomic<bool> isDone = false;
        test::Callers caller(1, [&](int /*caller*/) {
            served.main().runAndWait([&] {
                Asking others(served.main(), 2, 20);
                others.waitServing();
                EXPECT_EQ(others.done, 40);
            });
            isDone = true;
            served.main().wake();
        });
        served.main().waitServing([&] { return isDone.load(); });
    });
}

TEST(GlibMainThreadWaiting, FaultReachesWhoAskedAndTheWaitGoesOn) {
    Served served;
    served.main().runAndWait([&] {
        std::atomic<int> faults = 0;
        test::Callers caller(1, [&](int /*caller*/) {
            for (int round = 0; round < 10; ++round) {
                EXPECT_THROW(served.main().runAndWait([] { throw std::out_of_range("fault"); }),
                             std::out_of_range);
                ++faults;
            }
            served.main().wake();
        });
        served.main().waitServing([&] { return faults == 10; });
        EXPECT_EQ(faults, 10);
    });
}

TEST(GlibMainThreadWaiting, NothingToWaitForNeedsNoWake) {
    GlibMainThread main;
    main.waitServing([] { return true; });
    main.runAndWait([&] { main.waitServing([] { return true; }); });
    Served served;
    served.main().runAndWait([&] { served.main().waitServing([] { return true; }); });
}

TEST(GlibMainThreadWaiting, LoopTurnsBetweenTheWorkOfOthers) {
    Served served;
    std::atomic<bool> isEnough = false;
    test::Callers busy(4, [&](int /*caller*/) {
        while (!isEnough) {
            served.main().runAndWait([] {});
        }
    });
    std::atomic<int> turns = 0;
    for (int round = 0; round < 20; ++round) {
        g_idle_add_full(
            G_PRIORITY_DEFAULT,
            [](gpointer count) -> gboolean {
                ++*static_cast<std::atomic<int>*>(count);
                return G_SOURCE_REMOVE;
            },
            &turns, nullptr);
        while (turns == round) {
            std::this_thread::sleep_for(1ms);
        }
    }
    isEnough = true;
    EXPECT_EQ(turns, 20);
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
