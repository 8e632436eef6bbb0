#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/linux/BusCallers.h"
#include "platform/linux/BusFaults.h"
#include "platform/linux/GlibHandles.h"
#include "platform/linux/RequestQueue.h"

namespace qrx::platform {
namespace {

TEST(RequestQueue, ServesOneAtATimeInOrderOfArrival) {
    RequestQueue queue;
    std::vector<std::string> events;
    queue.add([&] {
        events.emplace_back("1 begins");
        queue.add([&] { events.emplace_back("2"); });  // arrives while 1 is served
        queue.add([&] {
            events.emplace_back("3");
            queue.add([&] { events.emplace_back("4"); });
        });
        events.emplace_back("1 ends");
    });
    EXPECT_EQ(events, (std::vector<std::string>{"1 begins", "1 ends", "2", "3", "4"}));
    queue.add([&] { events.emplace_back("5"); });
    EXPECT_EQ(events.back(), "5");
}

TEST(BusCallers, TokenIsStoppedWhenTheCallerLeaves) {
    BusCallers callers;
    callers.arrived(":1.7");
    callers.arrived(":1.8");
    const auto seven = callers.gone(":1.7");
    const auto eight = callers.gone(":1.8");
    int told = 0;
    const std::stop_callback listening(seven, [&] { ++told; });
    callers.left(":1.7");
    EXPECT_TRUE(seven.stop_requested());
    EXPECT_FALSE(eight.stop_requested());
    EXPECT_EQ(told, 1);
    callers.left(":1.7");
    EXPECT_EQ(told, 1);
}

TEST(BusCallers, AllCallsOfOneCallerEndTogether) {
    BusCallers callers;
    callers.arrived(":1.7");
    const auto first = callers.gone(":1.7");
    callers.arrived(":1.7");
    const auto second = callers.gone(":1.7");
    callers.left(":1.7");
    EXPECT_TRUE(first.stop_requested());
    EXPECT_TRUE(second.stop_requested());
}

TEST(BusCallers, CallerThatLeftBeforeItsCallWasServedIsGone) {
    BusCallers callers;
    callers.arrived(":1.7");
    callers.left(":1.7");
    EXPECT_TRUE(callers.gone(":1.7").stop_requested());
    callers.left(":1.9");  // never called
    EXPECT_TRUE(callers.gone(":1.9").stop_requested());
}

struct FaultCase {
    const char* name;
    const char* errorName;
    BusFault fault;
};

class RemoteFault : public testing::TestWithParam<FaultCase> {};

TEST_P(RemoteFault, IsToldByItsName) {
    const GlibHandle<GError> remote(
        g_dbus_error_new_for_dbus_error(GetParam().errorName, "what happened"));
    const BusError error = busErrorOf(remote.get());
    EXPECT_EQ(error.fault(), GetParam().fault);
    EXPECT_EQ(error.name(), GetParam().errorName);
    EXPECT_STREQ(error.what(), "what happened");
}

constexpr FaultCase kFaults[] = {
    {"NoSuchService", "org.freedesktop.DBus.Error.ServiceUnknown", BusFault::vanished},
    {"NoOwner", "org.freedesktop.DBus.Error.NameHasNoOwner", BusFault::vanished},
    {"LeftWithoutAnswer", "org.freedesktop.DBus.Error.NoReply", BusFault::vanished},
    {"Timeout", "org.freedesktop.DBus.Error.Timeout", BusFault::timedOut},
    {"TimedOut", "org.freedesktop.DBus.Error.TimedOut", BusFault::timedOut},
    {"TooLarge", "com.quillfen.Error.TooLarge", BusFault::refused},
    {"Denied", "org.freedesktop.DBus.Error.AccessDenied", BusFault::refused},
};

INSTANTIATE_TEST_SUITE_P(Table, RemoteFault, testing::ValuesIn(kFaults),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(BusFaults, LocalErrors) {
    const GlibHandle<GError> time(g_error_new(G_IO_ERROR, G_IO_ERROR_TIMED_OUT, "late"));
    EXPECT_EQ(busErrorOf(time.get()).fault(), BusFault::timedOut);
    const GlibHandle<GError> closed(g_error_new(G_IO_ERROR, G_IO_ERROR_CLOSED, "closed"));
    EXPECT_EQ(busErrorOf(closed.get()).fault(), BusFault::unreachable);
    EXPECT_STREQ(busErrorOf(closed.get()).what(), "closed");
}

}  // namespace
}  // namespace qrx::platform
