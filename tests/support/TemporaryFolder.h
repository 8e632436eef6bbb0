#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace qrx::test {

/// A folder of its own below the system's temporary folder, gone with everything in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Absolute, no trailing "/".
    [[nodiscard]] const std::string& path() const { return path_; }
    /// path() "/" `name`.
    [[nodiscard]] std::string operator/(std::string_view name) const;

    /// Writes a file at `name` below this folder, with the folders above it; gives its full path.
    std::string write(std::string_view name, std::string_view contents = {}) const;
    /// Makes a folder, with the folders above it; gives its full path.
    std::string makeFolder(std::string_view name) const;
    /// Makes a symbolic link at `name` with the text `target`; gives its full path.
    std::string link(std::string_view name, std::string_view target) const;

private:
    std::string path_;
};

/// A card: a list of names, built in a folder of its own. A name with a trailing "/" is a folder,
/// any other an empty file.
class CardTree : public TemporaryFolder {
public:
    CardTree(std::initializer_list<std::string_view> names);
};

/// The bytes of the file at `path`; throws when it cannot be read.
[[nodiscard]] std::string fileContents(const std::string& path);

}  // namespace qrx::test
