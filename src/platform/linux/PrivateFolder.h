#pragma once

#include <string>

namespace qrx::platform {

/// A new folder that only this user can look into, gone at the end with all that is in it.
class PrivateFolder {
public:
    /// @param parent  e.g. "/tmp". Throws std::system_error when no folder can be made in it.
    explicit PrivateFolder(const std::string& parent);
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_;
};

/// TMPDIR, or /tmp where that is not set to an absolute path.
[[nodiscard]] std::string temporaryParent();

}  // namespace qrx::platform
