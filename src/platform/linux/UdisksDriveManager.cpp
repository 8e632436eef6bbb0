#include "platform/linux/UdisksDriveManager.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include <gio/gio.h>

namespace qrx::platform {

namespace {

constexpr const char* kService = "org.freedesktop.UDisks2";
constexpr const char* kManager = "/org/freedesktop/UDisks2/Manager";
constexpr const char* kManagerInterface = "org.freedesktop.UDisks2.Manager";
constexpr const char* kBlockInterface = "org.freedesktop.UDisks2.Block";
constexpr const char* kFilesystemInterface = "org.freedesktop.UDisks2.Filesystem";
constexpr const char* kDriveInterface = "org.freedesktop.UDisks2.Drive";
constexpr const char* kPropertiesInterface = "org.freedesktop.DBus.Properties";
constexpr int kTimeLimit = 30'000;  // ms; writing back a slow card's cache takes its time

struct Release {
    void operator()(GDBusConnection* bus) const { g_object_unref(bus); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using Bus = std::unique_ptr<GDBusConnection, Release>;
using Value = std::unique_ptr<GVariant, Release>;

/// Nothing where there is no such bus.
Bus connected(const std::string& address) {
    if (address.empty()) return Bus(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
    constexpr auto kFlags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return Bus(
        g_dbus_connection_new_for_address_sync(address.c_str(), kFlags, nullptr, nullptr, nullptr));
}

bool serviceIsMissing(const GError* error) {
    return g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
           g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) ||
           g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND);
}

/// The service's answer; nothing when there is no such service. Takes a floating `arguments`.
Value answerOf(GDBusConnection* bus, const std::string& object, const char* interfaceName,
               const char* method, GVariant* arguments) {
    GError* error = nullptr;
    Value answer(g_dbus_connection_call_sync(bus, kService, object.c_str(), interfaceName, method,
                                             arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, kTimeLimit,
                                             nullptr, &error));
    if (answer) return answer;
    const bool isMissing = serviceIsMissing(error);
    const std::string message = error->message;
    g_error_free(error);
    if (!isMissing) throw std::runtime_error(std::string(method) + ": " + message);
    return nullptr;
}

/// "a{sv}" without an entry: no options.
GVariant* noOptions() {
    return g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0);
}

/// Object of the block device `device`; "" when the service is missing or does not know it.
std::string blockObject(GDBusConnection* bus, const std::string& device) {
    GVariant* const path = g_variant_new_string(device.c_str());
    GVariantBuilder wanted;
    g_variant_builder_init(&wanted, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&wanted, "{sv}", "path", path);
    const Value answer =
        answerOf(bus, kManager, kManagerInterface, "ResolveDevice",
                 g_variant_new("(@a{sv}@a{sv})", g_variant_builder_end(&wanted), noOptions()));
    if (!answer || !g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(ao)"))) return {};
    const Value objects(g_variant_get_child_value(answer.get(), 0));
    if (g_variant_n_children(objects.get()) == 0) return {};
    const Value object(g_variant_get_child_value(objects.get(), 0));
    return g_variant_get_string(object.get(), nullptr);
}

/// Object of the drive that the block device is part of; "" when there is none.
std::string driveObject(GDBusConnection* bus, const std::string& block) {
    const Value answer = answerOf(bus, block, kPropertiesInterface, "Get",
                                  g_variant_new("(ss)", kBlockInterface, "Drive"));
    if (!answer || !g_variant_is_of_type(answer.get(), G_VARIANT_TYPE("(v)"))) return {};
    const Value boxed(g_variant_get_child_value(answer.get(), 0));
    const Value drive(g_variant_get_variant(boxed.get()));
    if (!g_variant_is_of_type(drive.get(), G_VARIANT_TYPE_OBJECT_PATH)) return {};
    const std::string object = g_variant_get_string(drive.get(), nullptr);
    return object == "/" ? std::string() : object;
}

}  // namespace

UdisksDriveManager::UdisksDriveManager(std::string busAddress)
    : busAddress_(std::move(busAddress)) {}

void UdisksDriveManager::eject(const std::string& device) {
    const Bus bus = connected(busAddress_);
    if (!bus) return;
    const std::string block = blockObject(bus.get(), device);
    if (block.empty()) return;
    const Value unmounted = answerOf(bus.get(), block, kFilesystemInterface, "Unmount",
                                     g_variant_new("(@a{sv})", noOptions()));
    const std::string drive = driveObject(bus.get(), block);
    if (drive.empty()) return;
    const Value ejected = answerOf(bus.get(), drive, kDriveInterface, "Eject",
                                   g_variant_new("(@a{sv})", noOptions()));
}

void UdisksDriveManager::rename(const std::string& device, const std::string& label) {
    const Bus bus = connected(busAddress_);
    if (!bus) return;
    const std::string block = blockObject(bus.get(), device);
    if (block.empty()) return;
    if (g_utf8_validate(label.c_str(), -1, nullptr) == FALSE) {
        throw std::runtime_error("SetLabel: the name is not UTF-8");
    }
    const Value renamed = answerOf(bus.get(), block, kFilesystemInterface, "SetLabel",
                                   g_variant_new("(s@a{sv})", label.c_str(), noOptions()));
}

}  // namespace qrx::platform
