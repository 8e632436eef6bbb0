#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/ports/XmlDocument.h"

namespace qrx::platform {

/// The text of an XML file in UTF-8, without its byte-order mark.
struct DecodedXml {
    std::string text;
    XmlEncoding encoding;
    bool exact = true;  ///< every byte was valid in the encoding that the file states
};

/// Decodes by the byte-order mark, else by the pattern of the first characters, else by the
/// declaration, else as UTF-8. A byte that is not valid is read as the Latin-1 character of its
/// value; a file in an unknown encoding is read as UTF-8.
[[nodiscard]] DecodedXml decodedXml(std::string_view bytes);

/// See XmlParser::encoded.
[[nodiscard]] std::optional<std::string> encodedXml(std::string_view markup,
                                                    const XmlEncoding& encoding);

}  // namespace qrx::platform
