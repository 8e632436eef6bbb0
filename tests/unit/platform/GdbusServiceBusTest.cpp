#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gio/gio.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/GdbusServiceBus.h"
#include "platform/linux/GlibHandles.h"
#include "support/PrivateBus.h"

namespace qrx::platform {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char* kInterface = "com.example.Test";
constexpr const char* kDescription = R"(<node><interface name="com.example.Test">
  <method name="echo"><arg type="s" direction="in"/><arg type="s" direction="out"/></method>
  <method name="order"><arg type="i" direction="in"/></method>
  <method name="large"><arg type="u" direction="in"/><arg type="ay" direction="out"/></method>
  <method name="wrong"><arg type="b" direction="out"/></method>
  <method name="refuse"/>
  <method name="fault"/>
  <method name="wait"/>
  <method name="never"/>
  <method name="after"><arg type="b" direction="out"/></method>
  <method name="write"><arg type="h" direction="in"/></method>
  <method name="whoAmI"><arg type="s" direction="out"/></method>
  <signal name="Told"><arg type="u"/></signal>
</interface></node>)";

/// Answers by functions that a test may replace.
class TestObject final : public BusObject {
public:
    using Answer = std::function<BusAnswer(const BusCall&)>;

    [[nodiscard]] std::vector<std::string_view> interfaceDescriptions() const override {
        return {kDescription};
    }
    [[nodiscard]] ServedOn servedOn(std::string_view, std::string_view member) const override {
        return member == "never" ? ServedOn::ownThread : ServedOn::mainThread;
    }
    [[nodiscard]] std::string_view wayOutOfLargeAnswers() const override { return "Try less."; }
    [[nodiscard]] BusAnswer answer(const BusCall& call) override {
        return answers.at(call.member)(call);
    }

    std::map<std::string, Answer> answers;
};

/// Turns the default main context on a thread of its own.
class TurningLoop {
public:
    TurningLoop() : loop_(g_main_loop_new(nullptr, FALSE)) {
        thread_ = std::thread([this] { g_main_loop_run(loop_); });
        while (g_main_loop_is_running(loop_) == FALSE)
            std::this_thread::yield();
    }
    ~TurningLoop() {
        g_main_loop_quit(loop_);
        thread_.join();
        g_main_loop_unref(loop_);
    }
    TurningLoop(const TurningLoop&) = delete;
    TurningLoop& operator=(const TurningLoop&) = delete;

    [[nodiscard]] std::thread::id thread() const { return thread_.get_id(); }

private:
    GMainLoop* loop_;
    std::thread thread_;
};

/// Something that one thread waits for and another brings about.
class Event {
public:
    void happen() {
        const std::lock_guard lock(mutex_);
        happened_ = true;
        changed_.notify_all();
    }
    [[nodiscard]] bool waitFor(seconds limit = seconds{20}) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, limit, [this] { return happened_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool happened_ = false;
};

class GdbusServiceBusTest : public testing::Test {
protected:
    GdbusServiceBusTest() {
        object->answers["echo"] = [](const BusCall& call) { return BusAnswer(call.arguments); };
        EXPECT_TRUE(service->vend("Name", object));
        address = client.rootProxy("Name").value();
    }

    [[nodiscard]] BusValues call(const std::string& member, const std::string& signature = {},
                                 BusValues arguments = {}, Clock::Duration limit = seconds{20}) {
        return client.call(address, {kInterface, member, signature, std::move(arguments)}, limit);
    }
    /// The error of a call that fails.
    [[nodiscard]] BusError errorOf(const std::string& member, const std::string& signature = {},
                                   BusValues arguments = {}, Clock::Duration limit = seconds{20}) {
        try {
            static_cast<void>(call(member, signature, std::move(arguments), limit));
        } catch (const BusError& error) {
            return error;
        }
        throw std::logic_error(member + " raised nothing");
    }

    test::PrivateBus daemon;
    std::shared_ptr<TestObject> object = std::make_shared<TestObject>();
    std::atomic<int> timesLost = 0;
    std::unique_ptr<GdbusServiceBus> service =
        std::make_unique<GdbusServiceBus>(daemon.address(), [this] { ++timesLost; });
    GdbusServiceBus client{daemon.address()};
    BusAddress address;
    TurningLoop loop;  // last: it must be still before the service goes
};

TEST_F(GdbusServiceBusTest, FindsARootObjectByItsConnectionName) {
    EXPECT_EQ(address.connectionName, "Name");
    EXPECT_EQ(address.busName, "com.quillfen.connection.nName");
    EXPECT_TRUE(address.owner.starts_with(":"));
    EXPECT_EQ(address.objectPath, "/com/quillfen/RootObject");
    EXPECT_EQ(client.rootProxy("Other"), std::nullopt);
}

TEST_F(GdbusServiceBusTest, FurtherNamesLeadToTheSameObject) {
    EXPECT_TRUE(service->vend("", object));
    EXPECT_TRUE(service->vend("com.example.WellKnown", object));
    EXPECT_TRUE(service->vend("Name", object));  // its own already
    EXPECT_EQ(client.rootProxy("")->owner, address.owner);
    EXPECT_EQ(client.rootProxy("com.example.WellKnown")->busName, "com.example.WellKnown");
    EXPECT_EQ(service->rootProxy("Name")->owner, address.owner);
}

TEST_F(GdbusServiceBusTest, NameOfAnotherIsNotTaken) {
    EXPECT_FALSE(client.vend("Name", std::make_shared<TestObject>()));
    EXPECT_EQ(client.rootProxy("Name")->owner, address.owner);
}

TEST_F(GdbusServiceBusTest, AnswersOnTheMainThread) {
    std::atomic<std::thread::id> servedOn;
    object->answers["echo"] = [&](const BusCall& asked) {
        servedOn = std::this_thread::get_id();
        EXPECT_EQ(asked.interfaceName, kInterface);
        EXPECT_EQ(asked.member, "echo");
        EXPECT_FALSE(asked.callerGone.stop_requested());
        return BusAnswer(asked.arguments);
    };
    EXPECT_EQ(call("echo", "s", {"\xC3\xA9"}), BusValues{"\xC3\xA9"});
    EXPECT_EQ(servedOn.load(), loop.thread());
}

TEST_F(GdbusServiceBusTest, MalformedCallsReachNobody) {
    object->answers["echo"] = [](const BusCall&) -> BusAnswer {
        ADD_FAILURE() << "was asked";
        return {};
    };
    EXPECT_EQ(errorOf("echo", "i", {std::int32_t{1}}).name(), kInvalidArguments);
    EXPECT_EQ(errorOf("echo", "ss", {"a", "b"}).name(), kInvalidArguments);
    EXPECT_EQ(errorOf("echo").name(), kInvalidArguments);
    EXPECT_EQ(errorOf("notThere").name(), "org.freedesktop.DBus.Error.UnknownMethod");
    EXPECT_EQ(errorOf("echo", "s", {"\xFF"}).name(), kInvalidArguments);
    address.objectPath = "/elsewhere";
    EXPECT_EQ(errorOf("echo", "s", {"a"}).name(), "org.freedesktop.DBus.Error.UnknownMethod");
    address.objectPath = "no path";
    EXPECT_EQ(errorOf("echo", "s", {"a"}).name(), kInvalidArguments);
}

TEST_F(GdbusServiceBusTest, InterfaceMayBeLeftOut) {
    const GlibHandle<GDBusConnection> other(g_dbus_connection_new_for_address_sync(
        daemon.address().c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    ASSERT_NE(other, nullptr);
    const auto replyTo = [&](const char* member) {
        const GlibHandle<GDBusMessage> message(g_dbus_message_new_method_call(
            address.busName.c_str(), address.objectPath.c_str(), nullptr, member));
        g_dbus_message_set_body(message.get(), g_variant_new("(s)", "hello"));
        return GlibHandle<GDBusMessage>(g_dbus_connection_send_message_with_reply_sync(
            other.get(), message.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, 20'000, nullptr, nullptr,
            nullptr));
    };
    const auto known = replyTo("echo");
    ASSERT_NE(known, nullptr);
    EXPECT_EQ(g_dbus_message_get_message_type(known.get()), G_DBUS_MESSAGE_TYPE_METHOD_RETURN);
    const auto unknown = replyTo("notThere");
    ASSERT_NE(unknown, nullptr);
    EXPECT_EQ(g_dbus_message_get_message_type(unknown.get()), G_DBUS_MESSAGE_TYPE_ERROR);
    g_dbus_connection_close_sync(other.get(), nullptr, nullptr);
}

TEST_F(GdbusServiceBusTest, ErrorsReachTheCaller) {
    object->answers["refuse"] = [](const BusCall&) -> BusAnswer {
        throw BusError(BusFault::refused, "com.example.Error.No", "no \xFF");
    };
    object->answers["fault"] = [](const BusCall&) -> BusAnswer {
        throw std::runtime_error("broken");
    };
    object->answers["wrong"] = [](const BusCall&) { return BusAnswer({"text"}); };
    const BusError refusal = errorOf("refuse");
    EXPECT_EQ(refusal.fault(), BusFault::refused);
    EXPECT_EQ(refusal.name(), "com.example.Error.No");
    EXPECT_STREQ(refusal.what(), "no \xEF\xBF\xBD");
    EXPECT_EQ(errorOf("fault").name(), kCallFailed);
    EXPECT_EQ(errorOf("wrong").name(), kCallFailed);
    EXPECT_EQ(call("echo", "s", {"still there"}), BusValues{"still there"});
}

TEST_F(GdbusServiceBusTest, AnswerOverTheLimitIsCountedAndNotSent) {
    object->answers["large"] = [](const BusCall& asked) {
        return BusAnswer({BusBytes{std::string(asked.argument<std::uint32_t>(0), 'x')}});
    };
    constexpr std::uint32_t kArrayLength = 4;
    const std::uint32_t most = std::uint32_t{kMostAnswerBytes} - kArrayLength;
    EXPECT_EQ(call("large", "u", {most})[0].as<BusBytes>()->bytes.size(), most);
    const BusError error = errorOf("large", "u", {most + 1});
    EXPECT_EQ(error.name(), "com.quillfen.Error.TooLarge");
    EXPECT_STREQ(error.what(),
                 "The answer has 60000001 bytes, the bus carries 60000000. Try less.");
    EXPECT_EQ(call("echo", "s", {"still there"}), BusValues{"still there"});
}

TEST_F(GdbusServiceBusTest, TimeLimitEndsTheWait) {
    Event go;
    object->answers["wait"] = [&](const BusCall&) {
        EXPECT_TRUE(go.waitFor());
        return BusAnswer{};
    };
    const BusError error = errorOf("wait", {}, {}, milliseconds{50});
    EXPECT_EQ(error.fault(), BusFault::timedOut);
    go.happen();
    EXPECT_EQ(call("echo", "s", {"x"}, ServiceBus::kNoTimeLimit), BusValues{"x"});
}

TEST_F(GdbusServiceBusTest, VanishedServiceIsAnError) {
    Event arrived;
    Event left;
    Event finished;
    object->answers["never"] = [&](const BusCall&) -> BusAnswer {
        arrived.happen();
        EXPECT_TRUE(left.waitFor());
        finished.happen();
        return {};
    };
    std::thread leaving([&] {
        EXPECT_TRUE(arrived.waitFor());
        service.reset();
    });
    EXPECT_EQ(errorOf("never").fault(), BusFault::vanished);
    leaving.join();
    left.happen();
    EXPECT_TRUE(finished.waitFor());
    EXPECT_EQ(errorOf("echo", "s", {"x"}).fault(), BusFault::vanished);
    EXPECT_THROW(client.tell(address, {kInterface, "never", {}, {}}), BusError);
    EXPECT_EQ(client.rootProxy("Name"), std::nullopt);
    // Another process under the same name is another object.
    GdbusServiceBus other(daemon.address());
    EXPECT_TRUE(other.vend("Name", object));
    EXPECT_EQ(errorOf("echo", "s", {"x"}).fault(), BusFault::vanished);
}

TEST_F(GdbusServiceBusTest, ServesInOrderOfArrival) {
    std::vector<std::int32_t> served;
    Event first;
    object->answers["order"] = [&](const BusCall& asked) {
        if (served.empty()) {
            EXPECT_TRUE(first.waitFor());
        }
        served.push_back(asked.argument<std::int32_t>(0));
        return BusAnswer{};
    };
    for (std::int32_t i = 0; i < 50; ++i) {
        client.tell(address, {kInterface, "order", "i", {i}});
    }
    first.happen();
    EXPECT_EQ(call("echo", "s", {"last"}), BusValues{"last"});
    std::vector<std::int32_t> expected(50);
    for (std::int32_t i = 0; i < 50; ++i)
        expected[static_cast<std::size_t>(i)] = i;
    EXPECT_EQ(served, expected);
}

TEST_F(GdbusServiceBusTest, MemberOnAThreadOfItsOwnKeepsNobodyWaiting) {
    Event started;
    Event finish;
    object->answers["never"] = [&](const BusCall&) {
        EXPECT_NE(std::this_thread::get_id(), loop.thread());
        started.happen();
        EXPECT_TRUE(finish.waitFor());
        return BusAnswer{};
    };
    client.tell(address, {kInterface, "never", {}, {}});
    EXPECT_TRUE(started.waitFor());
    EXPECT_EQ(call("echo", "s", {"meanwhile"}), BusValues{"meanwhile"});
    finish.happen();
    EXPECT_EQ(call("never"), BusValues{});
}

TEST_F(GdbusServiceBusTest, CallerThatLeavesIsNoticedWhileItIsServed) {
    Event arrived;
    Event noticed;
    object->answers["wait"] = [&](const BusCall& asked) {
        const std::stop_callback listening(asked.callerGone, [&] { noticed.happen(); });
        arrived.happen();
        EXPECT_TRUE(noticed.waitFor());
        return BusAnswer{};
    };
    {
        GdbusServiceBus leaving(daemon.address());
        leaving.tell(address, {kInterface, "wait", {}, {}});
        EXPECT_TRUE(arrived.waitFor());
    }
    EXPECT_TRUE(noticed.waitFor());
    EXPECT_EQ(call("echo", "s", {"still there"}), BusValues{"still there"});
}

TEST_F(GdbusServiceBusTest, WhatFollowsAnAnswerComesAfterIt) {
    Event answered;
    object->answers["after"] = [&](const BusCall&) {
        return BusAnswer({true}, [&] { EXPECT_TRUE(answered.waitFor()); });
    };
    EXPECT_EQ(call("after"), BusValues{true});  // else it would wait for itself
    answered.happen();
    EXPECT_EQ(call("echo", "s", {"done"}), BusValues{"done"});
}

TEST_F(GdbusServiceBusTest, DescriptorIsClosedWithTheCall) {
    object->answers["write"] = [](const BusCall& asked) {
        const int pipe = *asked.argument<BusDescriptor>(0);
        EXPECT_EQ(::fcntl(pipe, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
        EXPECT_EQ(::write(pipe, "hello", 5), 5);
        return BusAnswer{};
    };
    int ends[2] = {};
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    {
        const BusDescriptor writeEnd(new int(ends[1]), [](const int* held) {
            ::close(*held);
            delete held;
        });
        static_cast<void>(call("write", "h", {writeEnd}));
    }
    std::string text;
    char byte = 0;
    while (::read(ends[0], &byte, 1) == 1)
        text += byte;  // ends when nobody holds the other end
    ::close(ends[0]);
    EXPECT_EQ(text, "hello");
}

TEST_F(GdbusServiceBusTest, SignalReachesItsReceiver) {
    GlibHandle<GDBusConnection> receiver(g_dbus_connection_new_for_address_sync(
        daemon.address().c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    ASSERT_NE(receiver, nullptr);
    struct Told {
        Event event;
        std::atomic<guint> number = 0;
    } told;
    const auto receive = +[](GDBusConnection*, const gchar*, const gchar*, const gchar*,
                             const gchar*, GVariant* arguments, gpointer into) {
        guint number = 0;
        g_variant_get(arguments, "(u)", &number);
        static_cast<Told*>(into)->number = number;
        static_cast<Told*>(into)->event.happen();
    };
    const guint subscription = g_dbus_connection_signal_subscribe(
        receiver.get(), address.owner.c_str(), kInterface, "Told", address.objectPath.c_str(),
        nullptr, G_DBUS_SIGNAL_FLAGS_NONE, receive, &told, nullptr);
    service->notify(g_dbus_connection_get_unique_name(receiver.get()),
                    {kInterface, "Told", "u", {std::uint32_t{7}}});
    EXPECT_TRUE(told.event.waitFor());
    EXPECT_EQ(told.number, 7U);
    g_dbus_connection_signal_unsubscribe(receiver.get(), subscription);
    service->notify(":1.9999", {kInterface, "Told", "u", {std::uint32_t{8}}});  // to nobody
    g_dbus_connection_close_sync(receiver.get(), nullptr, nullptr);
}

TEST_F(GdbusServiceBusTest, LostBusIsToldToWhoeverVends) {
    daemon.stop();
    for (int i = 0; i < 2000 && timesLost == 0; ++i) {
        std::this_thread::sleep_for(milliseconds{10});
    }
    EXPECT_EQ(timesLost, 1);
    EXPECT_EQ(errorOf("echo", "s", {"x"}).fault(), BusFault::unreachable);
}

TEST(GdbusServiceBus, WithoutABusEverythingRaises) {
    GdbusServiceBus bus("unix:path=/nowhere/at/all");
    EXPECT_THROW(static_cast<void>(bus.rootProxy("Name")), BusError);
    EXPECT_THROW(static_cast<void>(bus.vend("Name", std::make_shared<TestObject>())), BusError);
    EXPECT_THROW(static_cast<void>(bus.call({"Name", "a.b", "", "/"}, {"a.b", "c", {}, {}}, {})),
                 BusError);
}

}  // namespace
}  // namespace qrx::platform
