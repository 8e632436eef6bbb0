#pragma once

#include "platform/ports/XmlDocument.h"

namespace qrx::platform {

/// XML by libxml2 in its recovering mode. May be used from several threads.
class LibxmlParser final : public XmlParser {
public:
    /// The first one must be made before other threads run.
    LibxmlParser();

    [[nodiscard]] std::shared_ptr<XmlDocument> parse(std::string_view bytes) const override;
    [[nodiscard]] std::optional<std::string> encoded(std::string_view markup,
                                                     const XmlEncoding& encoding) const override;
};

}  // namespace qrx::platform
