#include "qrx/cards/NewCard.h"

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "foundation/PathText.h"
#include "qrx/ShownText.h"

namespace qrx::tool {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const std::string& path, const std::error_code& why) {
    throw CardProblem(shown(path) + ": " + why.message());
}

std::error_code lastError() {
    return {errno, std::generic_category()};
}

void refuseUnlessEmptyFolder(const std::string& folder) {
    std::error_code error;
    const fs::file_status status = fs::status(folder, error);
    if (status.type() == fs::file_type::not_found) {
        // A dangling link is not there, but a folder cannot be made in its place either.
        if (fs::symlink_status(folder).type() != fs::file_type::not_found) {
            throw CardProblem(shown(folder) + ": is a link that leads nowhere");
        }
        return;
    }
    if (error) fail(folder, error);
    if (status.type() != fs::file_type::directory) {
        throw CardProblem(shown(folder) + ": is no folder");
    }
    const bool isEmpty = fs::is_empty(folder, error);
    if (error) fail(folder, error);
    if (!isEmpty)
        throw CardProblem(shown(folder) + ": is not empty; a card is made in a new folder");
}

/// Gives an open, new file; never one that was there.
int createFile(const std::string& path) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) fail(path, lastError());
    return file;
}

void writeAll(int file, const std::string& path, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            const std::error_code error = lastError();
            ::close(file);
            fail(path, error);
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    if (::close(file) != 0) fail(path, lastError());
}

}  // namespace

NewCard::NewCard(std::string folder) : folder_(std::move(folder)) {
    refuseUnlessEmptyFolder(folder_);
    try {
        makeFoldersDownTo(folder_);
    } catch (...) {
        removeWhatWasMade();
        throw;
    }
}

NewCard::~NewCard() {
    if (!isKept_) removeWhatWasMade();
}

void NewCard::makeFolder(std::string_view name) {
    makeFoldersDownTo(joinedPath(folder_, name));
}

void NewCard::write(std::string_view name, std::string_view bytes) {
    const std::string path = pathForNewFile(name);
    writeAll(createFile(path), path, bytes);
}

void NewCard::copy(std::string_view from, std::string_view to) {
    const std::string path = pathForNewFile(to);
    std::error_code error;
    fs::copy_file(joinedPath(folder_, from), path, fs::copy_options::none, error);
    if (error) fail(path, error);
}

std::string NewCard::pathForNewFile(std::string_view name) {
    std::string path = joinedPath(folder_, name);
    makeFoldersDownTo(withoutLastPathComponent(path));
    made_.push_back(path);
    return path;
}

std::uintmax_t NewCard::sizeOf(std::string_view name) const {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(joinedPath(folder_, name), error);
    if (error) fail(joinedPath(folder_, name), error);
    return size;
}

void NewCard::makeFoldersDownTo(const std::string& folder) {
    std::error_code error;
    if (fs::is_directory(folder, error)) return;
    const std::string above = withoutLastPathComponent(folder);
    if (above != folder && !above.empty()) makeFoldersDownTo(above);
    if (!fs::create_directory(folder, error) && error) fail(folder, error);
    made_.push_back(folder);
}

void NewCard::removeWhatWasMade() noexcept {
    for (auto path = made_.rbegin(); path != made_.rend(); ++path) {
        std::error_code ignored;  // a folder into which somebody else put something stays
        fs::remove(*path, ignored);
    }
}

}  // namespace qrx::tool
