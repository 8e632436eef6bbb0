#include "readers/XmlFile.h"

#include <span>
#include <string>
#include <unordered_set>

#include "foundation/FileReplacement.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"
#include "readers/ByteSource.h"
#include "readers/XmlMarkup.h"

namespace qrx {

namespace {

using platform::XmlDocument;
using platform::XmlNode;
using platform::XmlParser;
using NodeSet = std::unordered_set<const XmlNode*>;

/// The nodes below the root that are to go. The whole walk is taken before any of them goes: a
/// node that is detached no longer leads to its neighbours.
NodeSet nodesToRemove(const XmlNode& root, std::string_view name, bool elementGoesToo) {
    const std::string opening = "<" + std::string(name) + ">";
    const std::string closing = "</" + std::string(name) + ">";
    const XmlMarkup markup(root);
    NodeSet going;
    bool removing = false;
    for (const auto& part : markup.parts()) {
        if (part.node == &root) continue;
        const auto text = markup.textOf(part);
        // KEPT: no node's text begins with an end tag, so what follows the element goes to the
        // end of the document; card resets count on that.
        if (beginsWith(text, closing)) removing = false;
        if (removing) going.insert(part.node);
        if (beginsWith(text, opening)) {
            removing = true;
            if (elementGoesToo) going.insert(part.node);
        }
    }
    return going;
}

/// Takes the nodes out of the lists of their parents.
void detach(XmlNode& node, const NodeSet& going) {
    std::erase_if(node.children, [&](XmlNode* child) {
        const bool goes = going.count(child) != 0;
        if (goes) child->parent = nullptr;
        return goes;
    });
    for (XmlNode* const child : node.children)
        detach(*child, going);
}

}  // namespace

std::shared_ptr<XmlDocument> xmlDocumentInFile(const FilePath& path) {
    const FileByteSource file(path);
    if (!file.isOpen() || file.size() > XmlParser::kMostBytes) return nullptr;
    std::string bytes(static_cast<std::size_t>(file.size()), '\0');
    bytes.resize(file.read(0, std::as_writable_bytes(std::span(bytes))));
    return platform::xmlParser().parse(bytes);
}

void removeNodesFrom(XmlDocument& document, std::string_view name, bool elementGoesToo) {
    detach(*document.root, nodesToRemove(*document.root, name, elementGoesToo));
}

bool removeNodesFromXmlFile(std::string_view name, const FilePath& path, bool elementGoesToo) {
    const auto document = xmlDocumentInFile(path);
    if (!document || !document->wellFormed) return false;
    removeNodesFrom(*document, name, elementGoesToo);
    const std::string markup =
        document->prolog + XmlMarkup(*document->root).text() + document->epilog;
    const auto bytes = platform::xmlParser().encoded(markup, document->encoding);
    return bytes && replaceFileContents(path, *bytes);
}

}  // namespace qrx
