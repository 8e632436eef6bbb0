#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/QRXObject.h"
#include "platform/ports/XmlDocument.h"

namespace qrx {

using platform::XmlDocument;
using platform::XmlNode;

/// A document, or null.
using XmlDocumentPointer = std::shared_ptr<XmlDocument>;
/// A node, or null. It keeps its whole document alive.
using XmlNodePointer = std::shared_ptr<XmlNode>;

/// What the camera utilities ask of their XML sidecar files. See XmlParser for what is read, and
/// XmlMarkup for what the text of a node looks like.
///
/// Every operation that is given a path reads the file anew; "no document" is a file that is
/// missing, no regular file, or holds no root element. Searches walk the nodes in document order
/// and never test the root itself. No operation throws.
class QRXXmlUtility : public QRXObject {
public:
    /// A new object.
    [[nodiscard]] static QRXXmlUtility xmlUtility() { return {}; }

    // Tags and values. A tag is how a node's text begins, "<" included: "<VideoFrame".

    /// Text of the first node that begins with `tag` and, when given, contains `valueDescriptor`.
    [[nodiscard]] static std::optional<std::string> findTagLine(
        std::string_view tag, const XmlDocument& document,
        const std::optional<std::string>& valueDescriptor);
    /// With a descriptor, that text of the file's document. Without one, that text with every `tag`
    /// in it removed, and every end tag of that name.
    [[nodiscard]] static std::optional<std::string> findXmlTagInfo(
        std::string_view tag, const FilePath& file, const std::optional<std::string>& descriptor);
    [[nodiscard]] static std::optional<std::string> findXmlTagInfo(std::string_view tag,
                                                                   const FilePath& file);
    /// What stands between the first double quote after the start of `valueDescriptor` and the
    /// next: "29.97p" for "formatFps=". Nothing when one of the three is missing.
    [[nodiscard]] static std::optional<std::string> stripValueFromInfo(
        const std::optional<std::string>& text, std::string_view valueDescriptor);

    // Documents and nodes.

    [[nodiscard]] static XmlDocumentPointer xmlDocumentForXmlFile(const FilePath& file);
    /// The first node of exactly that name.
    [[nodiscard]] static XmlNodePointer nodeWithName(std::string_view name, const FilePath& file);
    /// The first direct child of exactly that name.
    [[nodiscard]] static XmlNodePointer childNodeWithName(std::string_view name,
                                                          const XmlNodePointer& parent);
    /// Everything below `node`: each child, at once followed by everything below it.
    [[nodiscard]] static std::vector<XmlNodePointer> allDescendantsForNode(
        const XmlNodePointer& node);
    /// The text of every node below the root that has no children, under the name of its parent; of
    /// several parents of one name the last counts. Attributes are not in it.
    [[nodiscard]] static std::map<std::string, std::string> leafKeysAndValuesFromXmlFile(
        const FilePath& file);
    /// From the parent up to the top, nearest first.
    [[nodiscard]] std::vector<XmlNodePointer> ancestorsForElement(const XmlNodePointer& node) const;
    /// The element itself or the nearest one above it that has the attribute.
    [[nodiscard]] XmlNodePointer nearestElementWithAttribute(std::string_view attribute,
                                                             const XmlNodePointer& element) const;
    /// Gives the first direct child of that name a text in place of all that is in it.
    static void updateValueForChildWithName(std::string_view name, const XmlNodePointer& element,
                                            std::string_view newValue);

    using Texts = std::vector<std::optional<std::string>>;  ///< absent: something that is no text
    /// A new element by itself. The attributes are added in order where both lists are given and of
    /// one length; a pair of which one is no text is passed over.
    [[nodiscard]] static XmlNodePointer createElementWithName(
        std::string_view name, const std::optional<Texts>& attributes,
        const std::optional<Texts>& values, const std::optional<std::string>& stringValue);

    /// Removes everything that follows, in document order, the first element of that name without
    /// attributes, that element too when `tagIsHeader`, and writes the file back; see
    /// removeNodesFromXmlFile.
    [[nodiscard]] static bool removeXMLNode(std::string_view name, const FilePath& file,
                                            bool tagIsHeader);

    // Texts.

    /// See spacedMarkup. KEPT: each call leaves the word "Look" in the system log.
    [[nodiscard]] std::string spacedXmlStringForElement(const XmlNodePointer& element,
                                                        std::int32_t depth) const;
    /// See withoutTrailingWhiteSpace.
    [[nodiscard]] std::string removeLeadingAndTrailingWhiteSpaceFromString(
        std::string_view text) const;
};

}  // namespace qrx
