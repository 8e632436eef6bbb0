#include "distributed/ExportedObject.h"

#include <algorithm>
#include <utility>

namespace qrx {

ExportedObject::ExportedObject(std::vector<std::string_view> descriptions,
                               std::vector<BusMethod> methods, std::string_view wayOut)
    : descriptions_(std::move(descriptions)), methods_(std::move(methods)), wayOut_(wayOut) {}

const BusMethod* ExportedObject::method(std::string_view interfaceName,
                                        std::string_view member) const {
    const auto found = std::find_if(methods_.begin(), methods_.end(), [&](const BusMethod& one) {
        return one.interfaceName == interfaceName && one.member == member;
    });
    return found == methods_.end() ? nullptr : &*found;
}

platform::ServedOn ExportedObject::servedOn(std::string_view interfaceName,
                                            std::string_view member) const {
    const BusMethod* known = method(interfaceName, member);
    return known == nullptr ? platform::ServedOn::mainThread : known->servedOn;
}

platform::BusAnswer ExportedObject::answer(const platform::BusCall& call) {
    const BusMethod* known = method(call.interfaceName, call.member);
    if (known == nullptr) {
        throw platform::BusError(platform::BusFault::refused,
                                 "org.freedesktop.DBus.Error.UnknownMethod",
                                 "no such method: " + call.interfaceName + "." + call.member);
    }
    return known->answer(call);
}

}  // namespace qrx
