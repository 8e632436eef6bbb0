#include "platform/linux/ConnectionNames.h"

#include <algorithm>
#include <memory>

#include <gio/gio.h>

namespace qrx::platform {

namespace {

constexpr std::string_view kPrefix = "com.quillfen.connection.n";
constexpr std::size_t kMostBytesOfABusName = 255;
constexpr std::string_view kBusItself = "org.freedesktop.DBus";  // owned by the bus alone

bool mayBeOwned(std::string_view name) {
    const std::string text(name);
    return text.size() == name.size() && name.find('\0') == std::string_view::npos &&
           g_dbus_is_name(text.c_str()) != FALSE && g_dbus_is_unique_name(text.c_str()) == FALSE &&
           name != kBusItself;
}

bool isPlain(char byte) {
    return g_ascii_isalnum(byte) != FALSE;
}

std::string escaped(std::string_view name) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const char byte : name) {
        if (isPlain(byte)) {
            text += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        text += '_';
        text += kDigits[value >> 4U];
        text += kDigits[value & 0xFU];
    }
    return text;
}

std::string sha256(std::string_view bytes) {
    const std::unique_ptr<gchar, decltype(&g_free)> digest(
        g_compute_checksum_for_data(G_CHECKSUM_SHA256,
                                    reinterpret_cast<const guchar*>(bytes.data()), bytes.size()),
        &g_free);
    return digest.get();
}

}  // namespace

std::string busNameForConnection(std::string_view connectionName) {
    if (mayBeOwned(connectionName)) return std::string(connectionName);
    std::string name(kPrefix);
    name += escaped(connectionName);
    if (name.size() <= kMostBytesOfABusName) return name;
    return std::string(kPrefix) + sha256(connectionName);
}

}  // namespace qrx::platform
