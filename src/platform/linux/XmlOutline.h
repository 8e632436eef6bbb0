#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace qrx::platform {

/// Whether some tag in `markup` may have more attributes than XmlParser::kMostAttributes: libxml2
/// compares each attribute of a tag with every other, so that a single tag can take it hours.
[[nodiscard]] bool exceedsAttributeLimit(std::string_view markup);

/// Where the root's start tag begins in a well-formed document: after the declaration, comments,
/// instructions and the document type.
[[nodiscard]] std::optional<std::size_t> startOfRoot(std::string_view document);

}  // namespace qrx::platform
