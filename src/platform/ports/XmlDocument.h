#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qrx::platform {

enum class XmlNodeKind : std::uint8_t { element, text, comment, instruction };

struct XmlAttribute {
    std::string name;  ///< with its prefix; "xmlns" and "xmlns:..." declare namespaces
    std::string value;
};

class XmlDocument;

/// One node of a document. All text is UTF-8, references resolved.
struct XmlNode {
    XmlNodeKind kind = XmlNodeKind::element;
    std::string name;  ///< of an element, with its prefix; of an instruction, its target
    std::string text;  ///< of everything but elements
    std::vector<XmlAttribute> attributes;  ///< of elements, in document order
    XmlNode* parent = nullptr;             ///< none: a root, or detached
    std::vector<XmlNode*> children;
    XmlDocument* owner = nullptr;  ///< keeps the node; never none
};

/// How a document stood in its file.
struct XmlEncoding {
    std::string name = "UTF-8";  ///< as iconv knows it; of a fixed byte order
    std::string byteOrderMark;   ///< the bytes at the file's start; empty without a mark
};

/// A tree of nodes, which it owns: a node lives as long as its document, detached or not.
class XmlDocument {
public:
    XmlDocument() = default;
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    /// A new node, the last child of `parent`; without one it has no place in the tree yet.
    XmlNode& add(XmlNodeKind kind, XmlNode* parent) {
        XmlNode& node = nodes_.emplace_back();
        node.kind = kind;
        node.parent = parent;
        node.owner = this;
        if (parent != nullptr) parent->children.push_back(&node);
        return node;
    }

    XmlNode* root = nullptr;
    /// Nothing had to be repaired and nothing was left out, so that it may be written back.
    bool wellFormed = false;
    XmlEncoding encoding;
    std::string prolog;  ///< what stands before the root, as it stands; of well-formed ones only
    std::string epilog;  ///< what follows the root, likewise

private:
    std::deque<XmlNode> nodes_;
};

/// Reads XML as leniently as camera makers write it.
///
/// Damaged markup is repaired; text of white space alone is dropped; internal entities and
/// character references are resolved; CDATA is text; CR LF becomes LF. Nothing is ever loaded from
/// elsewhere.
class XmlParser {
public:
    // Beyond any of these limits there is no document.
    static constexpr std::size_t kMostBytes = std::size_t{16} << 20U;
    static constexpr std::size_t kMostNodes = 1'000'000;
    static constexpr std::size_t kDeepestLevel = 256;           ///< the root is level 1
    static constexpr std::size_t kMostAttributes = 4096;        ///< of one element
    static constexpr std::size_t kMostEntityBytes = 1'000'000;  ///< substituted in all

    virtual ~XmlParser() = default;

    /// The document in the bytes of a file; null when no root element comes out of them.
    [[nodiscard]] virtual std::shared_ptr<XmlDocument> parse(std::string_view bytes) const = 0;

    /// The bytes of `markup` (UTF-8) in `encoding`, its mark in front. Characters that the encoding
    /// lacks become character references. Nothing when the encoding is unknown.
    [[nodiscard]] virtual std::optional<std::string> encoded(std::string_view markup,
                                                             const XmlEncoding& encoding) const = 0;
};

}  // namespace qrx::platform
