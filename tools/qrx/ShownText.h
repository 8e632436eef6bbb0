#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qrx::tool {

/// Any bytes as one line of text that is safe on a terminal: printable characters as they are, "\"
/// as "\\", line ends and tabs as \n, \r and \t, other bytes that are control characters or not
/// UTF-8 as \x1b, other characters that do not print or that turn the direction of writing as
/// \u{202e}.
class ShownText {
public:
    explicit ShownText(std::string_view bytes);

    /// Columns that the text takes on a terminal.
    [[nodiscard]] std::size_t columns() const { return columns_; }
    [[nodiscard]] const std::string& text() const { return text_; }
    /// The text in at most `columns` columns; a longer one loses its middle to "…", and most of
    /// what stays is from the end, where the file's name is.
    [[nodiscard]] std::string fitted(std::size_t columns) const;

private:
    /// What is shown of one character of the bytes; it reaches to the next piece.
    struct Piece {
        std::size_t begin;  ///< in text_
        std::size_t columns;
    };

    std::string text_;
    std::vector<Piece> pieces_;
    std::size_t columns_ = 0;
};

/// ShownText(bytes).text()
[[nodiscard]] std::string shown(std::string_view bytes);

/// Whether `text` is UTF-8 that a terminal shows as it is; line feeds count as shown.
[[nodiscard]] bool isPlainText(std::string_view text);

}  // namespace qrx::tool
