#include "platform/linux/PrivateFolder.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>

namespace qrx::platform {

namespace {

constexpr int kMostTries = 20;
constexpr std::chrono::milliseconds kBetweenTries{10};

namespace fs = std::filesystem;

/// Folders that their maker has closed hold on to what is in them.
void openFoldersBelow(const std::string& path) {
    std::error_code fault;
    fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, fault);
    fs::recursive_directory_iterator each(path, fs::directory_options::skip_permission_denied,
                                          fault);
    for (; !fault && each != fs::recursive_directory_iterator(); each.increment(fault)) {
        std::error_code unknown;
        if (each->symlink_status(unknown).type() != fs::file_type::directory) continue;
        fs::permissions(each->path(), fs::perms::owner_all, fs::perm_options::add, unknown);
    }
}

}  // namespace

PrivateFolder::PrivateFolder(const std::string& parent) : path_(parent + "/qrx-XXXXXX") {
    if (::mkdtemp(path_.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), path_);
    }
}

PrivateFolder::~PrivateFolder() {
    // A child that was killed a moment ago may still finish the call that makes one more file.
    for (int i = 0; i < kMostTries; ++i) {
        std::error_code fault;
        fs::remove_all(path_, fault);
        if (!fault) return;
        openFoldersBelow(path_);
        std::this_thread::sleep_for(kBetweenTries);
    }
}

std::string temporaryParent() {
    const char* const chosen = std::getenv("TMPDIR");
    return chosen != nullptr && *chosen == '/' ? chosen : "/tmp";
}

}  // namespace qrx::platform
