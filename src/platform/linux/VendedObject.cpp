#include "platform/linux/VendedObject.h"

#include <exception>
#include <string>
#include <thread>
#include <utility>

#include <gio/gunixfdlist.h>
#include <unistd.h>

#include "platform/linux/BusFaults.h"
#include "platform/linux/BusVariants.h"

namespace qrx::platform {

namespace {

constexpr const char* kBus = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";
constexpr const char* kOwnerChanged = "NameOwnerChanged";
/// Names that nobody owns any more.
constexpr const char* kLeavingRule =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
    "member='NameOwnerChanged',arg2=''";

BusDescriptor owned(gint descriptor) {
    return {new int(descriptor), [](const int* held) {
                ::close(*held);
                delete held;
            }};
}

/// The descriptors that came with `message`, which has none afterwards: the other side sees the end
/// of a pipe as soon as ours are closed.
std::vector<BusDescriptor> takeDescriptors(GDBusMessage* message) {
    std::vector<BusDescriptor> taken;
    GUnixFDList* const list = g_dbus_message_get_unix_fd_list(message);
    if (list == nullptr) return taken;
    gint count = 0;
    const GlibHandle<gint> descriptors(g_unix_fd_list_steal_fds(list, &count));
    for (gint i = 0; i < count; ++i) {
        taken.push_back(owned(descriptors.get()[i]));
    }
    return taken;
}

std::string outSignature(const GDBusMethodInfo* method) {
    std::string signature;
    for (auto** argument = method->out_args; argument != nullptr && *argument != nullptr;
         ++argument) {
        signature += (*argument)->signature;
    }
    return signature;
}

std::string validUtf8(const std::string& text) {
    const GlibHandle<gchar> valid(
        g_utf8_make_valid(text.c_str(), static_cast<gssize>(text.size())));
    return valid.get();
}

}  // namespace

/// A call that waits for its answer.
class VendedObject::Invocation {
public:
    Invocation(GDBusMethodInvocation* invocation, BusCall call)
        : invocation_(invocation),
          signature_(outSignature(g_dbus_method_invocation_get_method_info(invocation))),
          call_(std::move(call)) {}

    [[nodiscard]] const BusCall& call() const { return call_; }

    /// Asks `object` and sends what it says. Raises no fault.
    void perform(BusObject& object) {
        try {
            const BusAnswer answer = object.answer(call_);
            reply(answer.results, object);
            if (answer.afterwards) {
                flush();
                answer.afterwards();
            }
        } catch (const BusError& error) {
            fail(error.name(), error.what());
        } catch (const std::exception& fault) {
            fail(std::string(kCallFailed), fault.what());
        } catch (...) {
            fail(std::string(kCallFailed), "unknown fault");
        }
    }

    /// Sends an error, unless the answer has been sent already.
    void fail(const std::string& name, const std::string& text) {
        if (invocation_ == nullptr) return;
        const bool isName = g_dbus_is_interface_name(name.c_str()) != FALSE;  // same grammar
        g_dbus_method_invocation_return_dbus_error(
            std::exchange(invocation_, nullptr),
            isName ? name.c_str() : std::string(kCallFailed).c_str(), validUtf8(text).c_str());
    }

private:
    void reply(const BusValues& results, const BusObject& object) {
        const std::size_t size = wireSize(results, signature_);
        if (size > kMostAnswerBytes) {
            throw BusError(BusFault::refused, std::string(kAnswerTooLarge),
                           "The answer has " + std::to_string(size) + " bytes, the bus carries " +
                               std::to_string(kMostAnswerBytes) + ". " +
                               std::string(object.wayOutOfLargeAnswers()));
        }
        const GlibHandle<GVariant> body = bodyOf(results, signature_, nullptr);
        connection_.reset(static_cast<GDBusConnection*>(
            g_object_ref(g_dbus_method_invocation_get_connection(invocation_))));
        g_dbus_method_invocation_return_value(std::exchange(invocation_, nullptr), body.get());
    }

    void flush() const { g_dbus_connection_flush_sync(connection_.get(), nullptr, nullptr); }

    GDBusMethodInvocation* invocation_;  // belongs to the answer
    GlibHandle<GDBusConnection> connection_;
    std::string signature_;
    BusCall call_;
};

VendedObject::VendedObject(GDBusConnection* connection, const char* objectPath,
                           std::shared_ptr<BusObject> object)
    : connection_(static_cast<GDBusConnection*>(g_object_ref(connection))) {
    serving_->object = std::move(object);
    serving_->objectPath = objectPath;
    for (const std::string_view description : serving_->object->interfaceDescriptions()) {
        registerInterfaces(description);
    }
    watchCallers();
}

VendedObject::~VendedObject() {
    for (const guint registration : registrations_) {
        g_dbus_connection_unregister_object(connection_.get(), registration);
    }
    g_dbus_connection_remove_filter(connection_.get(), filter_);
}

void VendedObject::watchCallers() {
    filter_ = g_dbus_connection_add_filter(
        connection_.get(), &VendedObject::watchMessage, new SharedServing(serving_),
        [](gpointer serving) { delete static_cast<SharedServing*>(serving); });
    GlibError error;
    const GlibHandle<GVariant> answer(g_dbus_connection_call_sync(
        connection_.get(), kBus, kBusPath, kBus, "AddMatch", g_variant_new("(s)", kLeavingRule),
        nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, error.receive()));
    if (!answer) throw busErrorOf(error.get());
}

void VendedObject::registerInterfaces(std::string_view description) {
    constexpr GDBusInterfaceVTable kTable{&VendedObject::receive, nullptr, nullptr, {}};
    GlibError error;
    GlibHandle<GDBusNodeInfo> node(
        g_dbus_node_info_new_for_xml(std::string(description).c_str(), error.receive()));
    if (!node) throw busErrorOf(error.get());
    for (auto** one = node->interfaces; one != nullptr && *one != nullptr; ++one) {
        const guint registration = g_dbus_connection_register_object(
            connection_.get(), serving_->objectPath.c_str(), *one, &kTable,
            new SharedServing(serving_),
            [](gpointer serving) { delete static_cast<SharedServing*>(serving); }, error.receive());
        if (registration == 0) throw busErrorOf(error.get());
        registrations_.push_back(registration);
        for (auto** method = (*one)->methods; method != nullptr && *method != nullptr; ++method) {
            serving_->interfaceOfMember.emplace((*method)->name, (*one)->name);
        }
    }
    descriptions_.push_back(std::move(node));
}

/// A caller may leave the interface out, and means the one that has the member; GDBus wants it.
GDBusMessage* VendedObject::withInterface(GDBusMessage* message, const Serving& serving) {
    const char* const member = g_dbus_message_get_member(message);
    if (member == nullptr || g_dbus_message_get_interface(message) != nullptr) return message;
    if (serving.objectPath != g_dbus_message_get_path(message)) return message;
    const auto found = serving.interfaceOfMember.find(member);
    if (found == serving.interfaceOfMember.end()) return message;
    GDBusMessage* const whole = g_dbus_message_copy(message, nullptr);
    if (whole == nullptr) return message;
    g_dbus_message_set_interface(whole, found->second.c_str());
    g_object_unref(message);
    return whole;
}

/// Runs on the connection's own thread, so that a caller's leaving is noticed while the main thread
/// is busy; messages pass in the order in which the bus sent them.
GDBusMessage* VendedObject::watchMessage(GDBusConnection*, GDBusMessage* message, gboolean incoming,
                                         gpointer serving) {
    if (incoming == FALSE) return message;
    Serving& served = **static_cast<SharedServing*>(serving);
    BusCallers& known = served.callers;
    const char* const sender = g_dbus_message_get_sender(message);
    const GDBusMessageType type = g_dbus_message_get_message_type(message);
    if (type == G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
        if (sender != nullptr) known.arrived(sender);
        return withInterface(message, served);
    }
    if (type != G_DBUS_MESSAGE_TYPE_SIGNAL || g_strcmp0(sender, kBus) != 0) return message;
    if (g_strcmp0(g_dbus_message_get_member(message), kOwnerChanged) != 0) return message;
    GVariant* const body = g_dbus_message_get_body(message);
    if (body == nullptr || g_variant_is_of_type(body, G_VARIANT_TYPE("(sss)")) == FALSE) {
        return message;
    }
    const char* name = nullptr;
    const char* newOwner = nullptr;
    g_variant_get(body, "(&ss&s)", &name, nullptr, &newOwner);
    if (*newOwner == '\0') known.left(name);
    return message;
}

void VendedObject::receive(GDBusConnection*, const gchar* sender, const gchar*,
                           const gchar* interfaceName, const gchar* member, GVariant* arguments,
                           GDBusMethodInvocation* invocation, gpointer serving) {
    const SharedServing served = *static_cast<SharedServing*>(serving);
    BusCall call;
    call.sender = sender == nullptr ? "" : sender;
    call.interfaceName = interfaceName;
    call.member = member;
    call.callerGone = served->callers.gone(call.sender);
    try {
        call.arguments =
            valuesOf(arguments, takeDescriptors(g_dbus_method_invocation_get_message(invocation)));
    } catch (const std::exception& fault) {
        g_dbus_method_invocation_return_dbus_error(
            invocation, std::string(kInvalidArguments).c_str(), validUtf8(fault.what()).c_str());
        return;
    }
    served->serve(std::make_shared<Invocation>(invocation, std::move(call)));
}

void VendedObject::Serving::serve(const std::shared_ptr<Invocation>& invocation) {
    const BusCall& call = invocation->call();
    auto perform = [served = object, invocation] { invocation->perform(*served); };
    if (object->servedOn(call.interfaceName, call.member) == ServedOn::mainThread) {
        queue.add(std::move(perform));
        return;
    }
    try {
        std::thread(perform).detach();
    } catch (const std::exception& fault) {  // no thread left
        invocation->fail(std::string(kCallFailed), fault.what());
    }
}

}  // namespace qrx::platform
