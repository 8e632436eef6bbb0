#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace qrx::platform {

/// Bytes of any kind: a file name that is not UTF-8, for one.
struct BusBytes {
    std::string bytes;
    bool operator==(const BusBytes&) const = default;
};

/// Where an object lives on its connection, e.g. "/com/quillfen/RootObject".
struct BusObjectPath {
    std::string text;
    bool operator==(const BusObjectPath&) const = default;
};

/// An open file descriptor that came with a call; closed with the last copy.
using BusDescriptor = std::shared_ptr<const int>;

/// One value that travels over the bus. Texts are UTF-8; dictionaries keep their order.
class BusValue {
public:
    using List = std::vector<BusValue>;
    using Dictionary = std::vector<std::pair<std::string, BusValue>>;

    BusValue(bool value) : held_(value) {}
    BusValue(std::int32_t value) : held_(value) {}
    BusValue(std::uint32_t value) : held_(value) {}
    BusValue(std::int64_t value) : held_(value) {}
    BusValue(std::uint64_t value) : held_(value) {}
    BusValue(double value) : held_(value) {}
    BusValue(std::string value) : held_(std::move(value)) {}
    BusValue(std::string_view value) : held_(std::string(value)) {}
    BusValue(const char* value)
        : held_(std::string(value)) {}  // else a pointer would become a bool
    BusValue(BusBytes value) : held_(std::move(value)) {}
    BusValue(BusObjectPath value) : held_(std::move(value)) {}
    BusValue(BusDescriptor value) : held_(std::move(value)) {}
    BusValue(List value) : held_(std::move(value)) {}
    BusValue(Dictionary value) : held_(std::move(value)) {}

    /// The value when it is of type `Kind`, else null.
    template <class Kind>
    [[nodiscard]] const Kind* as() const {
        return std::get_if<Kind>(&held_);
    }

    /// Calls `visitor` with the value as what it is.
    template <class Visitor>
    decltype(auto) visit(Visitor&& visitor) const {
        return std::visit(std::forward<Visitor>(visitor), held_);
    }

    bool operator==(const BusValue&) const = default;

private:
    std::variant<bool, std::int32_t, std::uint32_t, std::int64_t, std::uint64_t, double,
                 std::string, BusBytes, BusObjectPath, BusDescriptor, List, Dictionary>
        held_;
};

using BusValues = std::vector<BusValue>;

}  // namespace qrx::platform
