#include "readers/QRXXmlUtility.h"

#include <algorithm>

#include "foundation/NeutralAnswer.h"
#include "foundation/Text.h"
#include "platform/ports/Services.h"
#include "readers/XmlFile.h"
#include "readers/XmlMarkup.h"
#include "readers/XmlSpacing.h"

namespace qrx {

namespace {

using platform::XmlNodeKind;
using OptionalText = std::optional<std::string>;

/// Keeps what `owner` keeps alive.
template <class Owner>
XmlNodePointer pointerTo(XmlNode* node, const Owner& owner) {
    return node == nullptr ? nullptr : XmlNodePointer(owner, node);
}

/// Calls `use` with each node below `node` in document order, until it answers NO. The parser
/// bounds the depth.
template <class Use>
bool visitBelow(XmlNode& node, Use&& use) {
    return std::all_of(node.children.begin(), node.children.end(),
                       [&](XmlNode* child) { return use(*child) && visitBelow(*child, use); });
}

bool declaresNamespace(std::string_view attribute) {
    return attribute == "xmlns" || attribute.starts_with("xmlns:");
}

bool hasAttribute(const XmlNode& node, std::string_view name) {
    return !declaresNamespace(name) &&
           std::any_of(node.attributes.begin(), node.attributes.end(),
                       [&](const auto& attribute) { return attribute.name == name; });
}

/// Text and comments have no name.
bool isNamed(const XmlNode& node, std::string_view name) {
    return !name.empty() && node.name == name;
}

XmlNode* firstChildNamed(std::string_view name, const XmlNode& parent) {
    const auto found = std::find_if(parent.children.begin(), parent.children.end(),
                                    [&](const XmlNode* child) { return isNamed(*child, name); });
    return found == parent.children.end() ? nullptr : *found;
}

/// Where a text occurs next, asked for ever later places: the whole search passes over the text
/// once, however many nodes ask.
class NextOccurrence {
public:
    NextOccurrence(std::string_view text, std::string_view pattern)
        : text_(text), pattern_(pattern) {}

    /// Whether the text from `begin` to `end` has the pattern. `begin` never goes back.
    [[nodiscard]] bool isWithin(std::size_t begin, std::size_t end) {
        if (pattern_.empty()) return false;
        if (next_ == kUnasked || (next_ != std::string_view::npos && next_ < begin)) {
            next_ = text_.find(pattern_, begin);
        }
        return next_ != std::string_view::npos && next_ <= end && pattern_.size() <= end - next_;
    }

private:
    static constexpr std::size_t kUnasked = std::string_view::npos - 1;

    std::string_view text_;
    std::string_view pattern_;
    std::size_t next_ = kUnasked;
};

OptionalText firstTextWith(std::string_view tag, const XmlDocument& document,
                           const OptionalText& descriptor) {
    const XmlMarkup markup(*document.root);
    NextOccurrence occurrence(markup.text(), descriptor ? *descriptor : std::string_view{});
    for (const auto& part : markup.parts()) {
        const auto text = markup.textOf(part);
        const bool isCandidate = part.node != document.root && beginsWith(text, tag);
        if (!isCandidate) continue;
        if (!descriptor || occurrence.isWithin(part.begin, part.end)) return std::string(text);
    }
    return std::nullopt;
}

std::string withoutTags(const std::string& text, std::string_view tag) {
    const std::string endTag = replaceAll(tag, "<", "</");
    return replaceAll(replaceAll(text, tag, ""), endTag, "");
}

OptionalText quotedValueAfter(std::string_view descriptor, std::string_view text) {
    const auto start = find(text, descriptor);
    if (!start) return std::nullopt;
    const std::size_t quote = text.find('"', *start);
    if (quote == std::string_view::npos) return std::nullopt;
    const std::size_t end = text.find('"', quote + 1);
    if (end == std::string_view::npos) return std::nullopt;
    return std::string(text.substr(quote + 1, end - quote - 1));
}

void setText(XmlNode& node, std::string_view text) {
    if (node.kind != XmlNodeKind::element) {
        node.text = text;
        return;
    }
    for (XmlNode* const child : node.children)
        child->parent = nullptr;
    node.children.clear();
    if (!text.empty()) node.owner->add(XmlNodeKind::text, &node).text = text;
}

/// One attribute of each name: a later value takes the place of an earlier one.
void setAttribute(XmlNode& element, const std::string& name, const std::string& value) {
    const auto same = std::find_if(element.attributes.begin(), element.attributes.end(),
                                   [&](const auto& attribute) { return attribute.name == name; });
    if (same == element.attributes.end()) {
        element.attributes.push_back({name, value});
    } else {
        same->value = value;
    }
}

void setAttributes(XmlNode& element, const QRXXmlUtility::Texts& names,
                   const QRXXmlUtility::Texts& values) {
    if (names.size() != values.size()) return;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] && values[i]) setAttribute(element, *names[i], *values[i]);
    }
}

}  // namespace

OptionalText QRXXmlUtility::findTagLine(std::string_view tag, const XmlDocument& document,
                                        const OptionalText& valueDescriptor) {
    return answerOr(OptionalText{}, "findTagLine",
                    [&] { return firstTextWith(tag, document, valueDescriptor); });
}

OptionalText QRXXmlUtility::findXmlTagInfo(std::string_view tag, const FilePath& file,
                                           const OptionalText& descriptor) {
    return answerOr(OptionalText{}, "findXmlTagInfo", [&]() -> OptionalText {
        const auto document = xmlDocumentInFile(file);
        if (!document) return std::nullopt;
        auto text = firstTextWith(tag, *document, descriptor);
        if (!text || descriptor) return text;
        return withoutTags(*text, tag);
    });
}

OptionalText QRXXmlUtility::findXmlTagInfo(std::string_view tag, const FilePath& file) {
    return findXmlTagInfo(tag, file, std::nullopt);
}

OptionalText QRXXmlUtility::stripValueFromInfo(const OptionalText& text,
                                               std::string_view valueDescriptor) {
    return answerOr(OptionalText{}, "stripValueFromInfo",
                    [&] { return text ? quotedValueAfter(valueDescriptor, *text) : std::nullopt; });
}

XmlDocumentPointer QRXXmlUtility::xmlDocumentForXmlFile(const FilePath& file) {
    return answerOr(XmlDocumentPointer{}, "xmlDocumentForXmlFile",
                    [&] { return xmlDocumentInFile(file); });
}

XmlNodePointer QRXXmlUtility::nodeWithName(std::string_view name, const FilePath& file) {
    return answerOr(XmlNodePointer{}, "nodeWithName", [&] {
        const auto document = xmlDocumentInFile(file);
        XmlNode* found = nullptr;
        if (document) {
            visitBelow(*document->root, [&](XmlNode& node) {
                if (isNamed(node, name)) found = &node;
                return found == nullptr;
            });
        }
        return pointerTo(found, document);
    });
}

XmlNodePointer QRXXmlUtility::childNodeWithName(std::string_view name,
                                                const XmlNodePointer& parent) {
    return parent ? pointerTo(firstChildNamed(name, *parent), parent) : nullptr;
}

std::vector<XmlNodePointer> QRXXmlUtility::allDescendantsForNode(const XmlNodePointer& node) {
    return answerOr(std::vector<XmlNodePointer>{}, "allDescendantsForNode", [&] {
        std::vector<XmlNodePointer> descendants;
        if (!node) return descendants;
        visitBelow(*node, [&](XmlNode& below) {
            descendants.push_back(pointerTo(&below, node));
            return true;
        });
        return descendants;
    });
}

std::map<std::string, std::string> QRXXmlUtility::leafKeysAndValuesFromXmlFile(
    const FilePath& file) {
    using Leaves = std::map<std::string, std::string>;
    return answerOr(Leaves{}, "leafKeysAndValuesFromXmlFile", [&] {
        Leaves leaves;
        const auto document = xmlDocumentInFile(file);
        if (!document) return leaves;
        visitBelow(*document->root, [&](XmlNode& node) {
            if (node.children.empty()) leaves[node.parent->name] = textValue(node);
            return true;
        });
        return leaves;
    });
}

std::vector<XmlNodePointer> QRXXmlUtility::ancestorsForElement(const XmlNodePointer& node) const {
    return answerOr(std::vector<XmlNodePointer>{}, "ancestorsForElement", [&] {
        std::vector<XmlNodePointer> ancestors;
        if (!node) return ancestors;
        for (XmlNode* above = node->parent; above != nullptr; above = above->parent)
            ancestors.push_back(pointerTo(above, node));
        return ancestors;
    });
}

XmlNodePointer QRXXmlUtility::nearestElementWithAttribute(std::string_view attribute,
                                                          const XmlNodePointer& element) const {
    XmlNode* candidate = element.get();
    while (candidate != nullptr && !hasAttribute(*candidate, attribute))
        candidate = candidate->parent;
    return pointerTo(candidate, element);
}

void QRXXmlUtility::updateValueForChildWithName(std::string_view name,
                                                const XmlNodePointer& element,
                                                std::string_view newValue) {
    const bool updated = answerOr(false, "updateValueForChildWithName", [&] {
        XmlNode* const child = element ? firstChildNamed(name, *element) : nullptr;
        if (child != nullptr) setText(*child, newValue);
        return child != nullptr;
    });
    static_cast<void>(updated);
}

XmlNodePointer QRXXmlUtility::createElementWithName(std::string_view name,
                                                    const std::optional<Texts>& attributes,
                                                    const std::optional<Texts>& values,
                                                    const OptionalText& stringValue) {
    return answerOr(XmlNodePointer{}, "createElementWithName", [&] {
        const auto document = std::make_shared<XmlDocument>();
        XmlNode& element = document->add(XmlNodeKind::element, nullptr);
        document->root = &element;
        element.name = name;
        if (attributes && values) setAttributes(element, *attributes, *values);
        if (stringValue) setText(element, *stringValue);
        return pointerTo(&element, document);
    });
}

bool QRXXmlUtility::removeXMLNode(std::string_view name, const FilePath& file, bool tagIsHeader) {
    return answerOr(false, "removeXMLNode",
                    [&] { return removeNodesFromXmlFile(name, file, tagIsHeader); });
}

std::string QRXXmlUtility::spacedXmlStringForElement(const XmlNodePointer& element,
                                                     std::int32_t depth) const {
    return answerOr(std::string{}, "spacedXmlStringForElement", [&] {
        platform::systemLog().notice("Look");
        return element ? spacedMarkup(XmlMarkup(*element).text(), depth) : std::string{};
    });
}

std::string QRXXmlUtility::removeLeadingAndTrailingWhiteSpaceFromString(
    std::string_view text) const {
    return answerOr(std::string{}, "removeLeadingAndTrailingWhiteSpaceFromString",
                    [&] { return withoutTrailingWhiteSpace(text); });
}

}  // namespace qrx
