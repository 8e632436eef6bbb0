#pragma once

#include "platform/ports/PropertyList.h"

namespace qrx::platform {

/// libplist, behind the bounds of PropertyListBounds.h, which hold for writing as well.
class PlistPropertyList final : public PropertyListCodec {
public:
    [[nodiscard]] std::optional<PropertyValue> read(
        std::span<const std::byte> bytes) const override;
    [[nodiscard]] std::optional<std::vector<std::byte>> written(
        const PropertyValue& value, PropertyListFormat format) const override;
    [[nodiscard]] bool holdsText(const std::string& text, PropertyListFormat format) const override;
};

}  // namespace qrx::platform
