#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace qrx::platform {

/// Names another object of a keyed archive by its place in the archive's list.
struct PropertyUid {
    std::uint64_t index = 0;
    [[nodiscard]] friend bool operator==(const PropertyUid&, const PropertyUid&) = default;
};

/// One value of a property list: a truth, an integer, a real, a text (UTF-8), bytes, a UID, or an
/// array or a dictionary of values. Dates are not among them.
class PropertyValue {
public:
    using Data = std::vector<std::byte>;
    using Array = std::vector<PropertyValue>;
    using Dictionary = std::map<std::string, PropertyValue, std::less<>>;

    /// An empty dictionary.
    PropertyValue() : value_(Dictionary{}) {}
    PropertyValue(bool truth) : value_(truth) {}
    PropertyValue(int number) : value_(std::int64_t{number}) {}
    PropertyValue(std::int64_t number) : value_(number) {}
    /// Below 2^63 the same value as the signed number; both spell one integer.
    PropertyValue(std::uint64_t number) {
        if (number > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
            value_ = number;
        } else {
            value_ = static_cast<std::int64_t>(number);
        }
    }
    PropertyValue(double number) : value_(number) {}
    PropertyValue(const char* text) : value_(std::string(text)) {}
    PropertyValue(std::string text) : value_(std::move(text)) {}
    PropertyValue(Data bytes) : value_(std::move(bytes)) {}
    PropertyValue(PropertyUid uid) : value_(uid) {}
    PropertyValue(Array values) : value_(std::move(values)) {}
    PropertyValue(Dictionary values) : value_(std::move(values)) {}

    // Each answers null when the value is of another kind.
    [[nodiscard]] const bool* truth() const { return std::get_if<bool>(&value_); }
    [[nodiscard]] const double* real() const { return std::get_if<double>(&value_); }
    [[nodiscard]] const std::string* text() const { return std::get_if<std::string>(&value_); }
    [[nodiscard]] const Data* data() const { return std::get_if<Data>(&value_); }
    [[nodiscard]] const PropertyUid* uid() const { return std::get_if<PropertyUid>(&value_); }
    [[nodiscard]] const Array* array() const { return std::get_if<Array>(&value_); }
    [[nodiscard]] const Dictionary* dictionary() const { return std::get_if<Dictionary>(&value_); }

    /// An integer of up to 2^63 - 1; nothing for a larger one or another kind.
    [[nodiscard]] const std::int64_t* integer() const { return std::get_if<std::int64_t>(&value_); }
    /// An integer of 2^63 and above; nothing for a smaller one or another kind.
    [[nodiscard]] const std::uint64_t* largeInteger() const {
        return std::get_if<std::uint64_t>(&value_);
    }

    [[nodiscard]] friend bool operator==(const PropertyValue& a, const PropertyValue& b) {
        return a.value_ == b.value_;
    }

private:
    std::variant<bool, std::int64_t, std::uint64_t, double, std::string, Data, PropertyUid, Array,
                 Dictionary>
        value_;
};

enum class PropertyListFormat {
    binary,  ///< "bplist00"
    xml,     ///< a UID stands as a dictionary with the one key "CF$UID"
};

/// Reads and writes property lists.
class PropertyListCodec {
public:
    virtual ~PropertyListCodec() = default;

    /// The value that a list of either format holds. Nothing when the bytes are damaged, hold a
    /// date or exceed a limit (see the adapter).
    [[nodiscard]] virtual std::optional<PropertyValue> read(
        std::span<const std::byte> bytes) const = 0;

    /// The bytes of a list that holds `value`. Nothing when the format has no room for it: see
    /// holdsText(), which every text and every key must pass, and the limits of reading.
    [[nodiscard]] virtual std::optional<std::vector<std::byte>> written(
        const PropertyValue& value, PropertyListFormat format) const = 0;

    /// Whether a list of that format can hold `text` so that it is read back unchanged: UTF-8
    /// without a zero byte; in XML also without the control characters that XML has no place for,
    /// carriage return among them.
    [[nodiscard]] virtual bool holdsText(const std::string& text,
                                         PropertyListFormat format) const = 0;
};

}  // namespace qrx::platform
