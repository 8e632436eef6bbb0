#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace qrx {

/// What a caller may hand over as the value of a metadata key: a text, a number, or something that
/// has no text (an absent value, a list) and therefore changes nothing.
class MetadataValue {
public:
    MetadataValue() = default;
    MetadataValue(std::nullopt_t) {}
    MetadataValue(const char* text) : value_(std::string(text)) {}
    MetadataValue(std::string_view text) : value_(std::string(text)) {}
    MetadataValue(std::string text) : value_(std::move(text)) {}
    MetadataValue(std::optional<std::string> text) {
        if (text) value_ = std::move(*text);
    }
    MetadataValue(bool truth) : value_(truth) {}
    MetadataValue(std::signed_integral auto number) : value_(std::int64_t{number}) {}
    MetadataValue(std::unsigned_integral auto number) : value_(std::uint64_t{number}) {}
    MetadataValue(std::floating_point auto number) : value_(static_cast<double>(number)) {}
    MetadataValue(const std::vector<std::string>&) {}

    /// The text itself, or the number's decimal text (true is "1", doubles have 16 significant
    /// digits); nothing where there is no text.
    [[nodiscard]] std::optional<std::string> text() const;

private:
    std::variant<std::monostate, std::string, std::int64_t, std::uint64_t, double, bool> value_;
};

/// Identifier to value. The order in which its entries are visited must not matter.
using MetadataDictionary = std::map<std::string, MetadataValue, std::less<>>;

}  // namespace qrx
