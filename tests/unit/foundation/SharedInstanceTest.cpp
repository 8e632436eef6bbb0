#include <array>
#include <atomic>
#include <chrono>
#include <latch>
#include <set>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/SharedInstance.h"

namespace qrx {
namespace {

/// Counts the objects of one class that were made and that are alive.
template <int kTag>
struct Counted {
    Counted() {
        ++made;
        ++alive;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --alive; }

    static inline std::atomic<int> made{0};
    static inline std::atomic<int> alive{0};
};

TEST(SharedInstance, IsMadeOnceOnFirstUse) {
    using Class = Counted<1>;
    EXPECT_EQ(Class::made, 0);
    Class& first = sharedInstanceOf<Class>();
    EXPECT_EQ(&sharedInstanceOf<Class>(), &first);
    EXPECT_EQ(Class::made, 1);
    EXPECT_EQ(Class::alive, 1);
}

struct Parent : Counted<2> {};
struct Child : Parent {};

TEST(SharedInstance, SubclassHasASlotOfItsOwn) {
    EXPECT_NE(static_cast<Parent*>(&sharedInstanceOf<Child>()), &sharedInstanceOf<Parent>());
}

/// Slow to make, so that threads meet in the gap between looking and publishing.
struct Slow : Counted<3> {
    Slow() { std::this_thread::sleep_for(std::chrono::milliseconds(5)); }
};

TEST(SharedInstance, ThreadsThatRaceGetOneObjectAndTheLosersAreDeleted) {
    constexpr int kThreads = 16;
    std::latch start(kThreads);
    std::array<Slow*, kThreads> got{};
    std::vector<std::thread> threads;
    threads.reserve(got.size());
    for (Slow*& mine : got) {
        threads.emplace_back([&start, &mine] {
            start.arrive_and_wait();
            mine = &sharedInstanceOf<Slow>();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::set<Slow*>(got.begin(), got.end()).size(), 1U);
    EXPECT_NE(got.front(), nullptr);
    EXPECT_GE(Slow::made, 1);
    EXPECT_EQ(Slow::alive, 1);
}

}  // namespace
}  // namespace qrx
