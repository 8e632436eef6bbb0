#include "platform/linux/BusFaults.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "platform/linux/GlibHandles.h"

namespace qrx::platform {

namespace {

constexpr const char* kDisconnected = "org.freedesktop.DBus.Error.Disconnected";
constexpr const char* kTimeout = "org.freedesktop.DBus.Error.Timeout";

// The bus says NoReply when the other side left without an answer.
constexpr std::array<std::string_view, 3> kGoneErrors{"org.freedesktop.DBus.Error.ServiceUnknown",
                                                      "org.freedesktop.DBus.Error.NameHasNoOwner",
                                                      "org.freedesktop.DBus.Error.NoReply"};
constexpr std::array<std::string_view, 2> kTimeErrors{kTimeout,
                                                      "org.freedesktop.DBus.Error.TimedOut"};

template <std::size_t Count>
bool isOneOf(const std::array<std::string_view, Count>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// An error that a message carried.
BusError remoteError(const std::string& name, const GError* error) {
    GlibHandle<GError> plain(g_error_copy(error));
    g_dbus_error_strip_remote_error(plain.get());
    if (isOneOf(kGoneErrors, name)) return {BusFault::vanished, name, plain->message};
    if (isOneOf(kTimeErrors, name)) return {BusFault::timedOut, name, plain->message};
    return {BusFault::refused, name, plain->message};
}

}  // namespace

BusError busErrorOf(const GError* error) {
    if (g_dbus_error_is_remote_error(error) != FALSE) {
        const GlibHandle<gchar> name(g_dbus_error_get_remote_error(error));
        return remoteError(name.get(), error);
    }
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != FALSE) {
        return {BusFault::timedOut, kTimeout, error->message};
    }
    return {BusFault::unreachable, kDisconnected, error->message};
}

}  // namespace qrx::platform
