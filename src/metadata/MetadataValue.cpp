#include "metadata/MetadataValue.h"

#include "foundation/Text.h"

namespace qrx {

namespace {

struct TextOf {
    std::optional<std::string> operator()(std::monostate) const { return std::nullopt; }
    std::optional<std::string> operator()(const std::string& text) const { return text; }
    std::optional<std::string> operator()(std::int64_t number) const { return numberText(number); }
    std::optional<std::string> operator()(std::uint64_t number) const {
        return std::to_string(number);
    }
    std::optional<std::string> operator()(double number) const { return numberText(number); }
    std::optional<std::string> operator()(bool truth) const { return truth ? "1" : "0"; }
};

}  // namespace

std::optional<std::string> MetadataValue::text() const {
    return std::visit(TextOf{}, value_);
}

}  // namespace qrx
