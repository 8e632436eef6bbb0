#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qrx::tool {

/// The path that an argument means, absolute: a relative one is put behind the working folder, as
/// text; links and ".." stay as they are. Leading "./"s go, and so do "/"s at the end of the path
/// of a folder, as completion by the shell leaves them. The empty argument means nothing and stays
/// empty.
[[nodiscard]] std::string absolutePath(std::string_view argument);

/// Why there is nothing to look at, as a phrase for a message; nothing where something exists.
[[nodiscard]] std::optional<std::string> whyMissing(const std::string& path);

/// Why there is no file to ask about, as a phrase for a message: nothing exists there, or a folder.
[[nodiscard]] std::optional<std::string> whyNoFile(const std::string& path);

/// Reads names that end in a separator; the last one need not. Empty names are passed over.
class NameReader {
public:
    /// @param descriptor  is read but not closed.
    /// @param wakes       the reader gives up when one of these becomes readable.
    NameReader(int descriptor, char separator, std::vector<int> wakes)
        : descriptor_(descriptor), separator_(separator), wakes_(std::move(wakes)) {}

    /// Nothing at the end. Throws std::system_error when reading fails.
    [[nodiscard]] std::optional<std::string> next();

private:
    [[nodiscard]] bool readMore();

    int descriptor_;
    char separator_;
    std::vector<int> wakes_;
    std::string pending_;
    bool atEnd_ = false;
};

}  // namespace qrx::tool
