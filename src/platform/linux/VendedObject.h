#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/BusCallers.h"
#include "platform/linux/GlibHandles.h"
#include "platform/linux/RequestQueue.h"
#include "platform/ports/ServiceBus.h"

namespace qrx::platform {

/// A BusObject on a connection. Calls arrive through the default main context; those of the main
/// thread are served there, one at a time. What is being served when this object goes is served to
/// its end.
class VendedObject {
public:
    /// Throws BusError when a description cannot be used.
    VendedObject(GDBusConnection* connection, const char* objectPath,
                 std::shared_ptr<BusObject> object);
    ~VendedObject();
    VendedObject(const VendedObject&) = delete;
    VendedObject& operator=(const VendedObject&) = delete;

private:
    class Invocation;

    /// What calls need that are under way.
    struct Serving {
        std::shared_ptr<BusObject> object;
        std::string objectPath;
        std::map<std::string, std::string> interfaceOfMember;  ///< not changed once calls arrive
        BusCallers callers;
        RequestQueue queue;

        void serve(const std::shared_ptr<Invocation>& invocation);
    };
    using SharedServing = std::shared_ptr<Serving>;

    static GDBusMessage* watchMessage(GDBusConnection* connection, GDBusMessage* message,
                                      gboolean incoming, gpointer serving);
    static void receive(GDBusConnection* connection, const gchar* sender, const gchar* path,
                        const gchar* interfaceName, const gchar* member, GVariant* arguments,
                        GDBusMethodInvocation* invocation, gpointer serving);

    static GDBusMessage* withInterface(GDBusMessage* message, const Serving& serving);

    void watchCallers();
    void registerInterfaces(std::string_view description);

    GlibHandle<GDBusConnection> connection_;
    SharedServing serving_ = std::make_shared<Serving>();
    std::vector<GlibHandle<GDBusNodeInfo>> descriptions_;
    std::vector<guint> registrations_;
    guint filter_ = 0;
};

}  // namespace qrx::platform
