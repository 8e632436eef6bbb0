#include "platform/linux/GdbusServiceBus.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>

#include <gio/gunixfdlist.h>

#include "platform/linux/BusFaults.h"
#include "platform/linux/BusVariants.h"
#include "platform/linux/ConnectionNames.h"
#include "platform/linux/GlibHandles.h"
#include "platform/linux/VendedObject.h"

namespace qrx::platform {

namespace {

constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";
constexpr const char* kRootObject = "/com/quillfen/RootObject";
constexpr int kBusTimeLimit = 25'000;  // ms; for what the bus itself answers

// What the bus says to a request for a name.
constexpr guint32 kDoNotQueue = 4;
constexpr guint32 kNowOwner = 1;
constexpr guint32 kAlreadyOwner = 4;

GlibHandle<GDBusConnection> connected(const std::string& address) {
    GlibError error;
    GlibHandle<gchar> found;
    if (address.empty()) {
        found.reset(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, error.receive()));
        if (!found) throw busErrorOf(error.get());
    }
    constexpr auto kFlags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GlibHandle<GDBusConnection> connection(g_dbus_connection_new_for_address_sync(
        found ? found.get() : address.c_str(), kFlags, nullptr, nullptr, error.receive()));
    if (!connection) throw busErrorOf(error.get());
    return connection;
}

/// What the bus itself answers; throws BusError.
GlibHandle<GVariant> askBus(GDBusConnection* connection, const char* member, GVariant* arguments,
                            const char* answerType) {
    GlibError error;
    GlibHandle<GVariant> answer(g_dbus_connection_call_sync(
        connection, kBus, kBusPath, kBus, member, arguments, G_VARIANT_TYPE(answerType),
        G_DBUS_CALL_FLAGS_NO_AUTO_START, kBusTimeLimit, nullptr, error.receive()));
    if (!answer) throw busErrorOf(error.get());
    return answer;
}

/// The unique name behind `busName`; "" when there is none.
std::string ownerOf(GDBusConnection* connection, const std::string& busName) {
    try {
        const auto answer =
            askBus(connection, "GetNameOwner", g_variant_new("(s)", busName.c_str()), "(s)");
        const char* owner = nullptr;
        g_variant_get(answer.get(), "(&s)", &owner);
        return owner;
    } catch (const BusError& error) {
        if (error.fault() == BusFault::vanished) return {};
        throw;
    }
}

/// As GDBus counts: at least 1 ms, G_MAXINT for no limit.
gint milliseconds(Clock::Duration limit) {
    const auto count = std::chrono::ceil<std::chrono::milliseconds>(
                           std::min(limit, ServiceBus::kNoTimeLimit - std::chrono::seconds{1}))
                           .count();
    return static_cast<gint>(std::clamp<decltype(count)>(count, 1, G_MAXINT));
}

[[noreturn]] void refuseArguments(const std::invalid_argument& fault) {
    throw BusError(BusFault::refused, std::string(kInvalidArguments), fault.what());
}

GlibHandle<GDBusMessage> methodCall(const BusAddress& object, const BusMessage& request) {
    const std::string& receiver = object.owner.empty() ? object.busName : object.owner;
    const bool isValid = g_dbus_is_name(receiver.c_str()) != FALSE &&
                         g_variant_is_object_path(object.objectPath.c_str()) != FALSE &&
                         g_dbus_is_interface_name(request.interfaceName.c_str()) != FALSE &&
                         g_dbus_is_member_name(request.member.c_str()) != FALSE;
    if (!isValid) {
        refuseArguments(std::invalid_argument(
            "a call that cannot be written: " + request.interfaceName + "." + request.member));
    }
    GlibHandle<GDBusMessage> message(
        g_dbus_message_new_method_call(receiver.c_str(), object.objectPath.c_str(),
                                       request.interfaceName.c_str(), request.member.c_str()));
    const GlibHandle<GUnixFDList> descriptors(g_unix_fd_list_new());
    try {
        const auto body = bodyOf(request.arguments, request.signature, descriptors.get());
        if (!request.arguments.empty()) g_dbus_message_set_body(message.get(), body.get());
    } catch (const std::invalid_argument& fault) {
        refuseArguments(fault);
    }
    if (g_unix_fd_list_get_length(descriptors.get()) > 0) {
        g_dbus_message_set_unix_fd_list(message.get(), descriptors.get());
    }
    g_dbus_message_set_flags(message.get(), G_DBUS_MESSAGE_FLAGS_NO_AUTO_START);
    return message;
}

BusValues answerIn(GDBusMessage* reply) {
    GlibError error;
    if (g_dbus_message_to_gerror(reply, error.receive()) != FALSE) throw busErrorOf(error.get());
    try {
        return valuesOf(g_dbus_message_get_body(reply), {});
    } catch (const std::invalid_argument& fault) {
        throw BusError(BusFault::refused, "org.freedesktop.DBus.Error.InvalidSignature",
                       fault.what());
    }
}

}  // namespace

struct GdbusServiceBus::Connection {
    Connection(const std::string& address, std::function<void()> onLost)
        : bus(connected(address)), onLost_(std::move(onLost)) {
        const auto lost = +[](GDBusConnection*, gboolean, GError*, gpointer self) {
            const auto& connection = *static_cast<Connection*>(self);
            if (connection.vended && connection.onLost_) connection.onLost_();
        };
        closed_ = g_signal_connect(bus.get(), "closed", G_CALLBACK(lost), this);
    }
    ~Connection() {
        g_signal_handler_disconnect(bus.get(), closed_);
        vended.reset();
        g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    GlibHandle<GDBusConnection> bus;
    std::unique_ptr<VendedObject> vended;

private:
    std::function<void()> onLost_;
    gulong closed_ = 0;
};

GdbusServiceBus::GdbusServiceBus(std::string address, std::function<void()> onLost)
    : address_(std::move(address)), onLost_(std::move(onLost)) {}

GdbusServiceBus::~GdbusServiceBus() = default;

std::shared_ptr<GdbusServiceBus::Connection> GdbusServiceBus::connection() {
    const std::lock_guard lock(mutex_);
    if (!connection_ || g_dbus_connection_is_closed(connection_->bus.get()) != FALSE) {
        connection_ = std::make_shared<Connection>(address_, onLost_);
    }
    return connection_;
}

std::optional<BusAddress> GdbusServiceBus::rootProxy(std::string_view connectionName) {
    std::string busName = busNameForConnection(connectionName);
    std::string owner = ownerOf(connection()->bus.get(), busName);
    if (owner.empty()) return std::nullopt;
    return BusAddress{std::string(connectionName), std::move(busName), std::move(owner),
                      kRootObject};
}

bool GdbusServiceBus::vend(std::string_view connectionName, std::shared_ptr<BusObject> root) {
    const auto there = connection();
    if (!there->vended) {  // before the name: whoever sees the name finds the object
        there->vended =
            std::make_unique<VendedObject>(there->bus.get(), kRootObject, std::move(root));
    }
    const auto answer = askBus(
        there->bus.get(), "RequestName",
        g_variant_new("(su)", busNameForConnection(connectionName).c_str(), kDoNotQueue), "(u)");
    guint32 outcome = 0;
    g_variant_get(answer.get(), "(u)", &outcome);
    return outcome == kNowOwner || outcome == kAlreadyOwner;
}

BusValues GdbusServiceBus::call(const BusAddress& object, const BusMessage& request,
                                Clock::Duration timeLimit) {
    const auto there = connection();
    const auto message = methodCall(object, request);
    GlibError error;
    const GlibHandle<GDBusMessage> reply(g_dbus_connection_send_message_with_reply_sync(
        there->bus.get(), message.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, milliseconds(timeLimit),
        nullptr, nullptr, error.receive()));
    if (!reply) throw busErrorOf(error.get());
    return answerIn(reply.get());
}

void GdbusServiceBus::tell(const BusAddress& object, const BusMessage& request) {
    const auto there = connection();
    const std::string& receiver = object.owner.empty() ? object.busName : object.owner;
    const auto message = methodCall(object, request);
    if (ownerOf(there->bus.get(), receiver).empty()) {
        throw BusError(BusFault::vanished, "org.freedesktop.DBus.Error.ServiceUnknown",
                       object.busName + " has left the bus");
    }
    g_dbus_message_set_flags(
        message.get(), static_cast<GDBusMessageFlags>(G_DBUS_MESSAGE_FLAGS_NO_AUTO_START |
                                                      G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED));
    GlibError error;
    g_dbus_connection_send_message(there->bus.get(), message.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                   nullptr, error.receive());
    if (error.get() != nullptr) throw busErrorOf(error.get());
    g_dbus_connection_flush_sync(there->bus.get(), nullptr, nullptr);
}

void GdbusServiceBus::notify(const std::string& receiver, const BusMessage& signal) {
    const auto there = connection();
    try {
        const auto body = bodyOf(signal.arguments, signal.signature, nullptr);
        g_dbus_connection_emit_signal(there->bus.get(), receiver.c_str(), kRootObject,
                                      signal.interfaceName.c_str(), signal.member.c_str(),
                                      body.get(), nullptr);
    } catch (const std::invalid_argument& fault) {
        refuseArguments(fault);
    }
}

}  // namespace qrx::platform
