#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <latch>
#include <pthread.h>
#include <random>
#include <set>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/OrderedWork.h"
#include "platform/fake/FakeMainThread.h"
#include "platform/ports/Services.h"
#include "support/Callers.h"

namespace qrx {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

constexpr auto kAmpleTime = seconds{60};

/// Waits for what must come about; YES when it did.
template <class Condition>
bool comesAbout(const Condition& condition) {
    const auto until = steady_clock::now() + kAmpleTime;
    while (!condition()) {
        if (steady_clock::now() > until) return false;
        std::this_thread::sleep_for(milliseconds{1});
    }
    return true;
}

std::size_t threadsOfThisProcess() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

/// The numbers from 0 up to `count`, doubled, and everything that an observer sees of that.
class OrderedWorkTest : public testing::TestWithParam<WorkLimits> {
protected:
    bool run(const WorkLimits& limits) { return performInOrder(steps, limits); }
    /// With the caller held up at first, so that workers come in; once all goes quickly the caller
    /// goes on alone.
    bool run() {
        if (steps.before) {
            steps.before = [before = steps.before, isFirst = true](const int& number) mutable {
                if (std::exchange(isFirst, false)) std::this_thread::sleep_for(milliseconds{4});
                before(number);
            };
        }
        return run(GetParam());
    }

    /// What one worker makes the observer see of `taken` numbers and `announced` more.
    [[nodiscard]] static std::vector<std::string> story(int taken, int announced = 0) {
        std::vector<std::string> told;
        for (int i = 0; i < taken; ++i) {
            told.push_back("before " + std::to_string(i));
            told.push_back(std::to_string(i) + " gives " + std::to_string(2 * i));
        }
        for (int i = taken; i < taken + announced; ++i) {
            told.push_back("before " + std::to_string(i));
        }
        return told;
    }

    int count = 200;
    std::atomic<int> fetched = 0;
    std::atomic<int> worked = 0;
    std::atomic<bool> isCancelled = false;
    std::vector<std::string> seen;
    OrderedWork<int, int> steps{
        .next = [this]() -> std::optional<int> {
            if (fetched == count) return std::nullopt;
            return fetched++;
        },
        .work =
            [this](const int& number) {
                ++worked;
                return 2 * number;
            },
        .before = [this](const int& number) { seen.push_back("before " + std::to_string(number)); },
        .take =
            [this](const int& number, int&& doubled) {
                seen.push_back(std::to_string(number) + " gives " + std::to_string(doubled));
            },
        .isCancelled = [this] { return isCancelled.load(); }};
};

INSTANTIATE_TEST_SUITE_P(Limits, OrderedWorkTest,
                         testing::Values(WorkLimits{1, 0}, WorkLimits{2, 1}, WorkLimits{2, 0},
                                         WorkLimits{3, 2}, WorkLimits{16, 0}, WorkLimits{16, 5},
                                         WorkLimits{}),
                         [](const auto& row) {
                             return std::to_string(row.param.jobs) + "JobsWindow" +
                                    std::to_string(row.param.window);
                         });

TEST_P(OrderedWorkTest, ObserverSeesOneAtATimeInOrder) {
    EXPECT_TRUE(run());
    EXPECT_EQ(seen, story(count));
    EXPECT_EQ(worked, count);
}

TEST_P(OrderedWorkTest, OrderHoldsWhereWorkTakesAnyTime) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::vector<microseconds> duration;
    std::mt19937 random(seed);
    for (int i = 0; i < count; ++i) {
        duration.emplace_back(random() % 10 == 0 ? random() % 5000 : random() % 50);
    }
    steps.work = [&](const int& number) {
        std::this_thread::sleep_for(duration[static_cast<std::size_t>(number)]);
        return 2 * number;
    };
    EXPECT_TRUE(run());
    EXPECT_EQ(seen, story(count));
}

TEST_P(OrderedWorkTest, NoItems) {
    count = 0;
    EXPECT_TRUE(run());
    EXPECT_THAT(seen, IsEmpty());
}

TEST_P(OrderedWorkTest, NobodyNeedBeToldBefore) {
    steps.before = nullptr;
    steps.isCancelled = nullptr;
    count = 2;
    EXPECT_TRUE(run());
    EXPECT_THAT(seen, ElementsAre("0 gives 0", "1 gives 2"));
}

TEST_P(OrderedWorkTest, ObserverIsOnTheCallingThread) {
    std::set<std::thread::id> observers;
    steps.before = [&](const int&) { observers.insert(std::this_thread::get_id()); };
    steps.take = [&](const int&, int&&) { observers.insert(std::this_thread::get_id()); };
    EXPECT_TRUE(run());
    EXPECT_THAT(observers, ElementsAre(std::this_thread::get_id()));
}

TEST_P(OrderedWorkTest, NoThreadIsLeft) {
    const std::size_t before = threadsOfThisProcess();
    EXPECT_TRUE(run());
    EXPECT_TRUE(comesAbout([&] { return threadsOfThisProcess() <= before; }));
}

TEST_P(OrderedWorkTest, FaultInTheWorkComesAtItsTurn) {
    steps.work = [](const int& number) {
        if (number == 50) throw std::out_of_range("fifty");
        if (number > 50) throw std::logic_error("later");
        std::this_thread::sleep_for(microseconds{100});
        return 2 * number;
    };
    EXPECT_THROW(run(), std::out_of_range);
    EXPECT_EQ(seen, story(50, 1));
}

TEST_P(OrderedWorkTest, FaultOfNoStandardKindComesOut) {
    struct NoStandardFault {};
    steps.work = [](const int& number) -> int {
        if (number == 3) throw NoStandardFault{};
        return 2 * number;
    };
    EXPECT_THROW(run(), NoStandardFault);
    EXPECT_EQ(seen, story(3, 1));
}

TEST_P(OrderedWorkTest, FaultInTheWalkComesAfterWhatStandsBeforeIt) {
    steps.next = [this]() -> std::optional<int> {
        if (fetched == 20) throw std::out_of_range("walk");
        return fetched++;
    };
    EXPECT_THROW(run(), std::out_of_range);
    EXPECT_EQ(seen, story(20));
}

TEST_P(OrderedWorkTest, FaultBeforeAnItem) {
    steps.before = [this](const int& number) {
        if (number == 20) throw std::out_of_range("before");
        seen.push_back("before " + std::to_string(number));
    };
    EXPECT_THROW(run(), std::out_of_range);
    EXPECT_EQ(seen, story(20));
}

TEST_P(OrderedWorkTest, FaultOfWhoeverTakes) {
    steps.take = [this](const int& number, int&& doubled) {
        if (number == 20) throw std::out_of_range("full");
        seen.push_back(std::to_string(number) + " gives " + std::to_string(doubled));
    };
    EXPECT_THROW(run(), std::out_of_range);
    EXPECT_EQ(seen, story(20, 1));
}

TEST_P(OrderedWorkTest, WalkIsNotAskedAgainAfterItsEnd) {
    std::atomic<int> ends = 0;
    steps.next = [&]() -> std::optional<int> {
        if (fetched < 10) return fetched++;
        ++ends;
        std::this_thread::sleep_for(milliseconds{5});
        return std::nullopt;
    };
    EXPECT_TRUE(run());
    EXPECT_EQ(ends, 1);
}

TEST_P(OrderedWorkTest, CancelledBeforeTheFirstItem) {
    isCancelled = true;
    EXPECT_FALSE(run());
    EXPECT_THAT(seen, IsEmpty());
    EXPECT_EQ(fetched, 0);
}

TEST_P(OrderedWorkTest, NothingIsTakenAfterACancellation) {
    int startedBefore = 0;
    steps.take = [&](const int& number, int&&) {
        seen.push_back("took " + std::to_string(number));
        if (number != 30) return;
        startedBefore = worked;
        isCancelled = true;
    };
    EXPECT_FALSE(run());
    EXPECT_EQ(seen.back(), "took 30");
    // Each worker may have been past its last look at the cancellation.
    EXPECT_LE(worked, startedBefore + static_cast<int>(workersFor(GetParam().jobs)));
}

TEST_P(OrderedWorkTest, ItemUnderWayWhenCancelledIsNotTaken) {
    steps.work = [this](const int& number) {
        if (number == 30) isCancelled = true;
        return 2 * number;
    };
    EXPECT_FALSE(run());
    EXPECT_LE(seen.size(), story(30, 1).size());
    EXPECT_THAT(seen, Not(testing::Contains("30 gives 60")));
}

TEST_P(OrderedWorkTest, EndOfTheCallersRequestEndsToolsAndRun) {
    std::stop_source request;
    const platform::RunsUntil scope(request.get_token());
    std::atomic<int> ended = 0;
    steps.work = [&](const int& number) {
        EXPECT_THROW((void)platform::processRunner().run({"/bin/sleep", {"600"}}),
                     platform::RunCancelled);
        ++ended;
        return number;
    };
    steps.before = [&](const int&) { request.request_stop(); };
    EXPECT_FALSE(run());
    EXPECT_LE(ended, static_cast<int>(workersFor(GetParam().jobs)));
}

TEST_P(OrderedWorkTest, WindowIsNeverExceeded) {
    const unsigned jobs = workersFor(GetParam().jobs);
    const std::size_t window =
        GetParam().window > 0 ? GetParam().window : jobs * WorkLimits::kWindowPerJob;
    const std::size_t most = jobs == 1 ? 1 : window;
    count = 1000;
    std::atomic<std::size_t> taken = 0;
    std::atomic<std::size_t> ahead = 0;
    steps.next = [&]() -> std::optional<int> {
        ahead = std::max(ahead.load(), static_cast<std::size_t>(fetched) + 1 - taken);
        if (fetched == count) return std::nullopt;
        return fetched++;
    };
    steps.take = [&](const int& number, int&&) {
        if (number % 100 == 0) std::this_thread::sleep_for(milliseconds{2});
        ++taken;
    };
    EXPECT_TRUE(run());
    EXPECT_LE(ahead, most);
}

using OrderedWorkThreads = OrderedWorkTest;

TEST_F(OrderedWorkThreads, OneJobNeedsNoThread) {
    const auto caller = std::this_thread::get_id();
    steps.next = [&]() -> std::optional<int> {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        if (fetched == count) return std::nullopt;
        return fetched++;
    };
    steps.work = [&](const int& number) {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        return number;
    };
    EXPECT_TRUE(run({.jobs = 1}));
    EXPECT_EQ(fetched, count);
}

TEST_F(OrderedWorkThreads, AsManyItemsAtATimeAsThereAreJobs) {
    constexpr int kJobs = 8;
    count = kJobs;
    std::latch allAreThere(kJobs);
    steps.work = [&](const int& number) {
        allAreThere.count_down();
        EXPECT_TRUE(comesAbout([&] { return allAreThere.try_wait(); }));
        return 2 * number;
    };
    EXPECT_TRUE(run({.jobs = kJobs}));
    EXPECT_EQ(seen, story(count));
}

TEST_F(OrderedWorkThreads, WorkersGoOnWhileTheCallerIsHeldUp) {
    count = 5000;
    constexpr int kSlow = 1000;
    std::atomic<int> after = 0;
    steps.work = [&](const int& number) {
        if (number > kSlow) ++after;
        EXPECT_TRUE(number != kSlow || comesAbout([&] { return after == 10; }));
        return 2 * number;
    };
    EXPECT_TRUE(run({.jobs = 2, .window = 11}));
    EXPECT_EQ(seen, story(count));
}

TEST_F(OrderedWorkThreads, OrderHoldsWhereQuickAndSlowStretchesTakeTurns) {
    count = 20'000;
    steps.work = [&](const int& number) {
        if (number % 1000 == 0) std::this_thread::sleep_for(milliseconds{4});
        return 2 * number;
    };
    EXPECT_TRUE(run({.jobs = 3}));
    EXPECT_EQ(seen, story(count));
}

TEST_F(OrderedWorkThreads, FaultOfTheCallersOwnItemComesAtItsTurn) {
    steps.work = [&](const int& number) {
        if (number == 1) throw std::out_of_range("one");
        return 2 * number;
    };
    for (int i = 0; i < 200; ++i) {
        fetched = 0;
        seen.clear();
        EXPECT_THROW(run({.jobs = 2}), std::out_of_range);
        EXPECT_EQ(seen, story(1, 1));
    }
}

TEST_F(OrderedWorkThreads, NoMoreItemsAtATimeThanThereAreJobs) {
    std::atomic<int> atATime = 0;
    steps.work = [&](const int& number) {
        EXPECT_LE(++atATime, 3);
        std::this_thread::sleep_for(microseconds{200});
        --atATime;
        return number;
    };
    EXPECT_TRUE(run({.jobs = 3}));
}

TEST_F(OrderedWorkThreads, WalkRunsAheadToTheEndOfTheWindowAndStopsThere) {
    constexpr int kWindow = 7;
    std::atomic<bool> release = false;
    steps.work = [&](const int& number) {
        EXPECT_TRUE(number != 0 || comesAbout([&] { return release.load(); }));
        return number;
    };
    std::thread watching([&] {
        EXPECT_TRUE(comesAbout([&] { return fetched == kWindow; }));
        std::this_thread::sleep_for(milliseconds{20});  // time in which a mistake could show
        EXPECT_EQ(fetched, kWindow);
        release = true;
    });
    EXPECT_TRUE(run({.jobs = 2, .window = kWindow}));
    watching.join();
    EXPECT_EQ(fetched, count);
}

TEST_F(OrderedWorkThreads, WorkersTakeNoSignals) {
    sigset_t before;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &before);
    ASSERT_EQ(::sigismember(&before, SIGUSR1), 0);
    const auto caller = std::this_thread::get_id();
    std::atomic<int> ofWorkers = 0;
    steps.work = [&](const int& number) {
        sigset_t mask;
        ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        const bool isCaller = std::this_thread::get_id() == caller;
        EXPECT_NE(::sigismember(&mask, SIGUSR1), isCaller);
        EXPECT_NE(::sigismember(&mask, SIGINT), isCaller);
        if (!isCaller) ++ofWorkers;
        EXPECT_TRUE(number > 0 || comesAbout([&] { return ofWorkers > 0; }));
        return number;
    };
    EXPECT_TRUE(run({.jobs = 4}));
    EXPECT_GT(ofWorkers, 0);
    sigset_t after;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &after);
    EXPECT_EQ(::sigismember(&after, SIGUSR1), 0);
}

TEST_F(OrderedWorkThreads, ToolsAreEndedWhenWhoeverTakesThrows) {
    std::atomic<int> running = 0;
    std::atomic<int> ended = 0;
    steps.work = [&](const int& number) {
        if (number == 0) {
            EXPECT_TRUE(comesAbout([&] { return running == 3; }));
            return number;
        }
        ++running;
        EXPECT_THROW((void)platform::processRunner().run({"/bin/sleep", {"600"}}),
                     platform::RunCancelled);
        ++ended;
        return number;
    };
    steps.take = [](const int&, int&&) { throw std::out_of_range("full"); };
    EXPECT_THROW(run({.jobs = 4}), std::out_of_range);
    EXPECT_EQ(ended, running);
}

TEST_F(OrderedWorkThreads, CancelledWhileTheNextItemIsLongInComing) {
    std::atomic<bool> isAwaited = false;
    std::atomic<bool> gaveUp = false;
    steps.next = [&]() -> std::optional<int> {
        if (fetched < 3) return fetched++;
        isAwaited = true;
        const auto ended = platform::RunsUntil::current();
        gaveUp = comesAbout([&] { return ended.stop_requested(); });
        return std::nullopt;
    };
    steps.take = [&](const int& number, int&&) {
        if (number < 2) return;
        EXPECT_TRUE(comesAbout([&] { return isAwaited.load(); }));
        isCancelled = true;
    };
    EXPECT_FALSE(run({.jobs = 4}));
    EXPECT_TRUE(gaveUp);
}

TEST_F(OrderedWorkThreads, RunInsideTheWorkOfAnother) {
    count = 6;
    steps.work = [](const int& number) {
        int sum = 0;
        int next = 0;
        (void)performInOrder<int, int>({.next = [&next]() -> std::optional<int> {
                                            if (next == 10) return std::nullopt;
                                            return next++;
                                        },
                                        .work = [number](const int&) { return number; },
                                        .before = {},
                                        .take = [&sum](const int&, int&& one) { sum += one; },
                                        .isCancelled = {}},
                                       {.jobs = 2});
        return sum / 5;
    };
    EXPECT_TRUE(run({.jobs = 3}));
    EXPECT_EQ(seen, story(count));
}

/// A worker hands work to the thread that waits for the workers.
void expectWorkOnTheMainThread(platform::MainThread& main) {
    int sum = 0;
    const auto asker = std::this_thread::get_id();
    EXPECT_TRUE((performInOrder<int, int>({.next = [next = 0]() mutable -> std::optional<int> {
                                               if (next == 100) return std::nullopt;
                                               return next++;
                                           },
                                           .work =
                                               [&main](const int& number) {
                                                   int result = 0;
                                                   main.runAndWait([&] {
                                                       EXPECT_TRUE(main.isCurrent());
                                                       result = number;
                                                   });
                                                   return result;
                                               },
                                           .before = {},
                                           .take =
                                               [&](const int&, int&& one) {
                                                   EXPECT_EQ(std::this_thread::get_id(), asker);
                                                   sum += one;
                                               },
                                           .isCancelled = {}},
                                          {.jobs = 8, .window = 3})));
    EXPECT_EQ(sum, 4950);
}

TEST(OrderedWorkAndTheMainThread, CallerIsNotTheMainThread) {
    expectWorkOnTheMainThread(platform::mainThread());
}

TEST(OrderedWorkAndTheMainThread, CallerIsTheMainThread) {
    auto& main = platform::mainThread();
    main.runAndWait([&] { expectWorkOnTheMainThread(main); });
}

TEST(OrderedWorkAndTheMainThread, CallerThatIsTheMainThreadOnlyLeads) {
    auto& main = platform::mainThread();
    std::atomic<int> onTheCaller = 0;
    main.runAndWait([&] {
        const auto caller = std::this_thread::get_id();
        (void)performInOrder<int, int>({.next = [next = 0]() mutable -> std::optional<int> {
                                            if (next == 1000) return std::nullopt;
                                            return next++;
                                        },
                                        .work =
                                            [&](const int& number) {
                                                if (std::this_thread::get_id() == caller) {
                                                    ++onTheCaller;
                                                }
                                                return number;
                                            },
                                        .before = {},
                                        .take = [](const int&, int&&) {},
                                        .isCancelled = {}},
                                       {.jobs = 2});
    });
    EXPECT_EQ(onTheCaller, 0);
}

TEST(OrderedWorkAndTheMainThread, SeveralCallersOneOfThemTheMainThread) {
    auto& main = platform::mainThread();
    test::Callers callers(4, [&](int caller) {
        if (caller == 0) {
            main.runAndWait([&] { expectWorkOnTheMainThread(main); });
        } else {
            expectWorkOnTheMainThread(main);
        }
    });
}

TEST(OrderedWorkAndTheMainThread, FaultWhileWorkersWaitForTheMainThread) {
    auto& main = platform::mainThread();
    main.runAndWait([&] {
        std::atomic<int> next = 0;
        EXPECT_THROW((performInOrder<int, int>({.next = [&next] { return std::optional(next++); },
                                                .work =
                                                    [&main](const int& number) {
                                                        main.runAndWait([] {});
                                                        return number;
                                                    },
                                                .before = {},
                                                .take =
                                                    [](const int& number, int&&) {
                                                        if (number == 20)
                                                            throw std::out_of_range("full");
                                                    },
                                                .isCancelled = {}},
                                               {.jobs = 8})),
                     std::out_of_range);
    });
}

TEST(OrderedWorkAndTheMainThread, FakeOneServesToo) {
    const platform::ScopedServices services;
    services->mainThread = std::make_shared<platform::FakeMainThread>();
    auto& main = platform::mainThread();
    expectWorkOnTheMainThread(main);
    main.runAndWait([&] { expectWorkOnTheMainThread(main); });
}

TEST(WorkersFor, NumberThatIsNamedIsTaken) {
    EXPECT_EQ(workersFor(1), 1U);
    EXPECT_EQ(workersFor(16), 16U);
    EXPECT_EQ(workersFor(64), 64U);
    EXPECT_EQ(workersFor(1'000'000), 64U);
}

TEST(WorkersFor, AsChosenForTheProcessWhereNoneIsNamed) {
    const platform::ScopedServices services;
    services->jobs = 3;
    EXPECT_EQ(workersFor(WorkLimits::kAsChosen), 3U);
    EXPECT_EQ(workersFor(2), 2U);
}

TEST(WorkersFor, AsManyAsCoresWhereNothingIsChosen) {
    EXPECT_EQ(workersFor(WorkLimits::kAsChosen),
              std::clamp(std::thread::hardware_concurrency(), 1U, 64U));
}

TEST(JobsNamed, NumbersFromOneToSixtyFour) {
    EXPECT_EQ(jobsNamed("1"), 1U);
    EXPECT_EQ(jobsNamed("16"), 16U);
    EXPECT_EQ(jobsNamed("64"), 64U);
    for (const char* const text :
         {"", "0", "65", "-1", "+4", " 4", "4 ", "4x", "x", "0x4", "1.5", "99999999999999999999"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(jobsNamed(text), std::nullopt);
    }
}

}  // namespace
}  // namespace qrx
