#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "platform/ports/ServiceBus.h"

namespace qrx {

/// One member that others may call over the bus.
struct BusMethod {
    std::string_view interfaceName;
    std::string_view member;
    platform::ServedOn servedOn;
    std::function<platform::BusAnswer(const platform::BusCall&)> answer;
};

/// An object made of a list of members and the descriptions of their interfaces.
class ExportedObject final : public platform::BusObject {
public:
    /// @param wayOut  what a caller is told whose answer was too large; must outlive the object.
    ExportedObject(std::vector<std::string_view> descriptions, std::vector<BusMethod> methods,
                   std::string_view wayOut = platform::kAskForLess);

    [[nodiscard]] std::vector<std::string_view> interfaceDescriptions() const override {
        return descriptions_;
    }
    /// The main thread for a member that is not in the list.
    [[nodiscard]] platform::ServedOn servedOn(std::string_view interfaceName,
                                              std::string_view member) const override;
    [[nodiscard]] std::string_view wayOutOfLargeAnswers() const override { return wayOut_; }
    /// Refuses a member that is not in the list.
    [[nodiscard]] platform::BusAnswer answer(const platform::BusCall& call) override;

    [[nodiscard]] const std::vector<BusMethod>& methods() const { return methods_; }

private:
    [[nodiscard]] const BusMethod* method(std::string_view interfaceName,
                                          std::string_view member) const;

    std::vector<std::string_view> descriptions_;
    std::vector<BusMethod> methods_;
    std::string_view wayOut_;
};

}  // namespace qrx
