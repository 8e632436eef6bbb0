#include "platform/linux/XmlBuilder.h"

namespace qrx::platform {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

}  // namespace

XmlNode& XmlBuilder::startElement(std::string_view name) {
    addPendingText();
    if (++depth_ > XmlParser::kDeepestLevel) refuse();
    XmlNode& element = add(XmlNodeKind::element);
    element.name = name;
    if (document_->root == nullptr) document_->root = &element;
    open_ = &element;
    return element;
}

void XmlBuilder::endElement() {
    addPendingText();
    if (open_ == nullptr) return;
    open_ = open_->parent;
    --depth_;
}

void XmlBuilder::text(std::string_view piece) {
    if (isInsideRoot()) pendingText_ += piece;
}

void XmlBuilder::comment(std::string_view text) {
    if (!isInsideRoot()) return;
    addPendingText();
    add(XmlNodeKind::comment).text = text;
}

void XmlBuilder::instruction(std::string_view target, std::string_view data) {
    if (!isInsideRoot()) return;
    addPendingText();
    XmlNode& node = add(XmlNodeKind::instruction);
    node.name = target;
    node.text = data;
}

void XmlBuilder::substitutes(std::size_t bytes) {
    if (bytes > XmlParser::kMostEntityBytes - substituted_) {
        refuse();
    } else {
        substituted_ += bytes;
    }
}

std::shared_ptr<XmlDocument> XmlBuilder::finished() {
    addPendingText();
    if (refused_ || document_->root == nullptr) return nullptr;
    return std::move(document_);
}

XmlNode& XmlBuilder::add(XmlNodeKind kind) {
    if (++nodes_ > XmlParser::kMostNodes) refuse();
    return document_->add(kind, open_);
}

void XmlBuilder::addPendingText() {
    const bool isBlank = pendingText_.find_first_not_of(kBlanks) == std::string::npos;
    if (!isBlank && isInsideRoot()) add(XmlNodeKind::text).text = pendingText_;
    pendingText_.clear();
}

}  // namespace qrx::platform
