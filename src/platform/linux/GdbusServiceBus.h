#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "platform/ports/ServiceBus.h"

namespace qrx::platform {

/// The service bus on D-Bus. The connection is made when it is first needed; without a bus each
/// operation tries anew.
class GdbusServiceBus final : public ServiceBus {
public:
    /// @param address  of the bus, as D-Bus writes it; "" is the session bus of this user.
    /// @param onLost   called on the main thread when the bus has gone under a vended object.
    explicit GdbusServiceBus(std::string address = {}, std::function<void()> onLost = {});
    ~GdbusServiceBus() override;
    GdbusServiceBus(const GdbusServiceBus&) = delete;
    GdbusServiceBus& operator=(const GdbusServiceBus&) = delete;

    [[nodiscard]] std::optional<BusAddress> rootProxy(std::string_view connectionName) override;
    /// Calls are received by the default main context.
    [[nodiscard]] bool vend(std::string_view connectionName,
                            std::shared_ptr<BusObject> root) override;
    [[nodiscard]] BusValues call(const BusAddress& object, const BusMessage& request,
                                 Clock::Duration timeLimit) override;
    void tell(const BusAddress& object, const BusMessage& request) override;
    void notify(const std::string& receiver, const BusMessage& signal) override;

private:
    struct Connection;

    [[nodiscard]] std::shared_ptr<Connection> connection();

    const std::string address_;
    const std::function<void()> onLost_;
    std::mutex mutex_;  // guards what follows
    std::shared_ptr<Connection> connection_;
};

}  // namespace qrx::platform
