#pragma once

#include <cstddef>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "platform/ports/XmlDocument.h"

namespace qrx::platform {

/// Makes a document of what a parser meets, in order, and keeps to the limits of XmlParser.
class XmlBuilder {
public:
    /// The new element; to be ended by `endElement`.
    XmlNode& startElement(std::string_view name);
    void endElement();
    /// Text may come in pieces.
    void text(std::string_view piece);
    void comment(std::string_view text);
    void instruction(std::string_view target, std::string_view data);
    /// An entity is about to be replaced by that many bytes.
    void substitutes(std::size_t bytes);
    /// Something was left out that the file says.
    void leavesOut() { complete_ = false; }
    void refuse() { refused_ = true; }

    [[nodiscard]] bool isRefused() const { return refused_; }
    [[nodiscard]] bool isComplete() const { return complete_; }
    [[nodiscard]] bool isInsideRoot() const { return open_ != nullptr; }
    /// The document; null when it was refused or has no root.
    [[nodiscard]] std::shared_ptr<XmlDocument> finished();

private:
    [[nodiscard]] XmlNode& add(XmlNodeKind kind);
    void addPendingText();

    std::shared_ptr<XmlDocument> document_ = std::make_shared<XmlDocument>();
    XmlNode* open_ = nullptr;
    std::string pendingText_;
    std::size_t depth_ = 0;
    std::size_t nodes_ = 0;
    std::size_t substituted_ = 0;
    bool refused_ = false;
    bool complete_ = true;
};

}  // namespace qrx::platform
