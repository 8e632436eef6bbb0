#pragma once

#include <memory>
#include <string_view>

#include "foundation/FilePath.h"
#include "platform/ports/XmlDocument.h"

namespace qrx {

/// The document in the regular file at `path`, or where a link there leads; null when there is none
/// to be read (see XmlParser).
[[nodiscard]] std::shared_ptr<platform::XmlDocument> xmlDocumentInFile(const FilePath& path);

/// Removes from the document in the file at `path` everything that follows, in document order, the
/// first element below the root that is named `name` and has no attributes; that element too when
/// `elementGoesToo`. Then writes the document back, in its encoding.
///
/// @return whether it was written. NO, and the file as it was, for a document that is not
///         well-formed, for a symbolic link, and after any fault. May throw.
[[nodiscard]] bool removeNodesFromXmlFile(std::string_view name, const FilePath& path,
                                          bool elementGoesToo);

/// The removal alone, on the document in memory.
void removeNodesFrom(platform::XmlDocument& document, std::string_view name, bool elementGoesToo);

}  // namespace qrx
