#include "support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace qrx::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (fs::temp_directory_path() / "qrx-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder: " + pattern);
    }
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::string TemporaryFolder::operator/(std::string_view name) const {
    return path_ + "/" + std::string(name);
}

std::string TemporaryFolder::write(std::string_view name, std::string_view contents) const {
    const std::string full = *this / name;
    fs::create_directories(fs::path(full).parent_path());
    std::ofstream file(full, std::ios::binary);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    if (!file) throw std::runtime_error("cannot write " + full);
    return full;
}

std::string TemporaryFolder::makeFolder(std::string_view name) const {
    std::string full = *this / name;
    while (full.ends_with('/'))
        full.pop_back();
    fs::create_directories(full);
    return full;
}

std::string TemporaryFolder::link(std::string_view name, std::string_view target) const {
    const std::string full = *this / name;
    fs::create_directories(fs::path(full).parent_path());
    fs::create_symlink(target, full);
    return full;
}

CardTree::CardTree(std::initializer_list<std::string_view> names) {
    for (const std::string_view name : names) {
        if (name.ends_with('/')) {
            makeFolder(name);
        } else {
            write(name);
        }
    }
}

std::string fileContents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace qrx::test
