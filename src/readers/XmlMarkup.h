#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/XmlDocument.h"

namespace qrx {

/// The markup of one node and of everything below it, written once; the text of each node below is
/// a part of it.
///
/// An element is its start tag with the attributes in document order, in double quotes, its content
/// and its end tag: an empty element is `<a></a>`. Text escapes & < >, attribute values also the
/// double quote and what a reader would take for a blank (LF as `&#10;`).
class XmlMarkup {
public:
    /// Where one node's text lies.
    struct Part {
        const platform::XmlNode* node = nullptr;
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    explicit XmlMarkup(const platform::XmlNode& node);

    /// The whole text.
    [[nodiscard]] const std::string& text() const { return text_; }
    /// The node itself first, then each below it in document order.
    [[nodiscard]] const std::vector<Part>& parts() const { return parts_; }
    [[nodiscard]] std::string_view textOf(const Part& part) const {
        return std::string_view(text_).substr(part.begin, part.end - part.begin);
    }

private:
    void write(const platform::XmlNode& node);
    void writeElement(const platform::XmlNode& element);

    std::string text_;
    std::vector<Part> parts_;
};

/// The text of every node of kind text at or below `node`, joined; of a comment or an instruction
/// its own.
[[nodiscard]] std::string textValue(const platform::XmlNode& node);

}  // namespace qrx
