#include "readers/XmlMarkup.h"

namespace qrx {

namespace {

using platform::XmlNode;
using platform::XmlNodeKind;

/// What stands for a character; empty where it stands for itself.
std::string_view escapeInText(char character) {
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '\r':
            return "&#13;";  // a bare one would be read as a line end
        default:
            return {};
    }
}

std::string_view escapeInAttribute(char character) {
    switch (character) {
        case '"':
            return "&quot;";
        case '\n':
            return "&#10;";
        case '\t':
            return "&#9;";
        default:
            return escapeInText(character);
    }
}

template <class Escape>
void appendEscaped(std::string& markup, std::string_view text, Escape escape) {
    for (const char character : text) {
        const std::string_view escaped = escape(character);
        if (escaped.empty()) {
            markup += character;
        } else {
            markup += escaped;
        }
    }
}

// Documents are at most XmlParser::kDeepestLevel levels deep, which bounds this recursion and that
// of XmlMarkup::write.
void appendText(std::string& text, const XmlNode& node) {
    if (node.kind == XmlNodeKind::text) text += node.text;
    for (const XmlNode* const child : node.children)
        appendText(text, *child);
}

}  // namespace

XmlMarkup::XmlMarkup(const XmlNode& node) {
    write(node);
}

void XmlMarkup::write(const XmlNode& node) {
    const std::size_t index = parts_.size();
    parts_.push_back({&node, text_.size(), 0});
    switch (node.kind) {
        case XmlNodeKind::element:
            writeElement(node);
            break;
        case XmlNodeKind::text:
            appendEscaped(text_, node.text, escapeInText);
            break;
        case XmlNodeKind::comment:
            text_.append("<!--").append(node.text).append("-->");
            break;
        case XmlNodeKind::instruction:
            text_.append("<?").append(node.name);
            if (!node.text.empty()) text_.append(" ").append(node.text);
            text_ += "?>";
            break;
    }
    parts_[index].end = text_.size();
}

void XmlMarkup::writeElement(const XmlNode& element) {
    text_.append("<").append(element.name);
    for (const auto& attribute : element.attributes) {
        text_.append(" ").append(attribute.name).append("=\"");
        appendEscaped(text_, attribute.value, escapeInAttribute);
        text_ += '"';
    }
    text_ += '>';
    for (const XmlNode* const child : element.children)
        write(*child);
    text_.append("</").append(element.name).append(">");
}

std::string textValue(const XmlNode& node) {
    if (node.kind != XmlNodeKind::element) return node.text;
    std::string text;
    appendText(text, node);
    return text;
}

}  // namespace qrx
