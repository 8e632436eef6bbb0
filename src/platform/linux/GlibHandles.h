#pragma once

#include <memory>
#include <type_traits>

#include <gio/gio.h>

namespace qrx::platform {

/// Gives up what a GLib function has handed out.
struct GlibRelease {
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(GVariantType* type) const { g_variant_type_free(type); }
    void operator()(GDBusNodeInfo* node) const { g_dbus_node_info_unref(node); }
    /// An array of numbers or characters, or else an object.
    template <class Type>
    void operator()(Type* other) const {
        if constexpr (std::is_arithmetic_v<Type>) {
            g_free(other);
        } else {
            g_object_unref(other);
        }
    }
};

template <class Type>
using GlibHandle = std::unique_ptr<Type, GlibRelease>;

/// Receives the error of one GLib call.
class GlibError {
public:
    /// To be handed to the call, once.
    [[nodiscard]] GError** receive() { return &error_; }
    [[nodiscard]] const GError* get() const { return error_; }

    GlibError() = default;
    ~GlibError() { g_clear_error(&error_); }
    GlibError(const GlibError&) = delete;
    GlibError& operator=(const GlibError&) = delete;

private:
    GError* error_ = nullptr;
};

}  // namespace qrx::platform
