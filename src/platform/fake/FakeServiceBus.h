#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/ports/ServiceBus.h"

namespace qrx::platform {

/// A session of its own in memory. A connection name is its own bus name. Calls are answered on the
/// caller. May be used from several threads, set up from one.
class FakeServiceBus final : public ServiceBus {
public:
    static constexpr std::string_view kOwnOwner = ":1.1";
    static constexpr std::string_view kRootObject = "/com/quillfen/RootObject";

    struct Sent {
        BusAddress object;
        BusMessage message;
        Clock::Duration timeLimit{};
    };
    struct Signal {
        std::string receiver;
        BusMessage message;
    };

    // What a test says.

    /// Another process serves `root` under `connectionName`.
    void serve(std::string connectionName, std::shared_ptr<BusObject> root) {
        const std::lock_guard lock(mutex_);
        const std::string owner = ":1." + std::to_string(++lastOwner_);
        served_[std::move(connectionName)] = {owner, std::move(root)};
    }
    /// Whoever serves under `connectionName` leaves.
    void vanish(const std::string& connectionName) {
        const std::lock_guard lock(mutex_);
        served_.erase(connectionName);
    }
    /// Called before each look-up, e.g. to let a service appear in time.
    std::function<void(std::string_view connectionName)> onLookUp;
    /// Whether there is a bus at all.
    bool reachable = true;
    /// A name that somebody takes between the look-up and the moment of taking.
    std::optional<std::string> takenMeanwhile;

    // What came of it.

    /// Calls and tellings, in order.
    std::vector<Sent> sent;
    std::vector<Signal> signals;
    std::vector<std::string> lookUps;

    [[nodiscard]] std::shared_ptr<BusObject> rootObject(const std::string& connectionName) const {
        const std::lock_guard lock(mutex_);
        const auto found = served_.find(connectionName);
        return found == served_.end() ? nullptr : found->second.root;
    }

    [[nodiscard]] std::optional<BusAddress> rootProxy(std::string_view connectionName) override {
        requireBus();
        if (onLookUp) onLookUp(connectionName);
        const std::lock_guard lock(mutex_);
        std::string name(connectionName);
        lookUps.push_back(name);
        const auto found = served_.find(name);
        if (found == served_.end()) return std::nullopt;
        return BusAddress{name, name, found->second.owner, std::string(kRootObject)};
    }

    [[nodiscard]] bool vend(std::string_view connectionName,
                            std::shared_ptr<BusObject> root) override {
        requireBus();
        const std::lock_guard lock(mutex_);
        if (connectionName == takenMeanwhile) return false;
        const Served served{std::string(kOwnOwner), std::move(root)};
        return served_.emplace(std::string(connectionName), served).first->second.owner ==
               kOwnOwner;
    }

    [[nodiscard]] BusValues call(const BusAddress& object, const BusMessage& request,
                                 Clock::Duration timeLimit) override {
        const std::shared_ptr<BusObject> root = send(object, request, timeLimit);
        const BusAnswer answer = root->answer({.sender = std::string(kOwnOwner),
                                               .interfaceName = request.interfaceName,
                                               .member = request.member,
                                               .arguments = request.arguments,
                                               .callerGone = {}});
        if (answer.afterwards) answer.afterwards();
        return answer.results;
    }

    /// Kept, and answered by nobody.
    void tell(const BusAddress& object, const BusMessage& request) override {
        static_cast<void>(send(object, request, {}));
    }

    void notify(const std::string& receiver, const BusMessage& signal) override {
        const std::lock_guard lock(mutex_);
        signals.push_back({receiver, signal});
    }

private:
    struct Served {
        std::string owner;
        std::shared_ptr<BusObject> root;
    };

    void requireBus() const {
        if (reachable) return;
        throw BusError(BusFault::unreachable, "org.freedesktop.DBus.Error.NoServer", "no bus");
    }

    std::shared_ptr<BusObject> send(const BusAddress& object, const BusMessage& message,
                                    Clock::Duration timeLimit) {
        requireBus();
        const std::lock_guard lock(mutex_);
        sent.push_back({object, message, timeLimit});
        for (const auto& [name, served] : served_) {
            if (served.owner == object.owner) return served.root;
        }
        throw BusError(BusFault::vanished, "org.freedesktop.DBus.Error.ServiceUnknown",
                       object.busName + " is gone");
    }

    mutable std::mutex mutex_;
    std::map<std::string, Served> served_;
    int lastOwner_ = 1;
};

}  // namespace qrx::platform
