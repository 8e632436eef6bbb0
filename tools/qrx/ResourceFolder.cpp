#include "qrx/ResourceFolder.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "foundation/FileQuestions.h"

namespace qrx::tool {

namespace {

/// From the folder of the program.
constexpr std::array<std::string_view, 2> kPlaces{
    QRX_INSTALLED_RESOURCES,
    "../QRXHDFileMatcher.app/Contents/Resources",  // in a build folder
};

}  // namespace

std::string resourceFolder() {
    std::error_code unknown;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", unknown);
    for (const std::string_view place : kPlaces) {
        std::string folder = (program.parent_path() / place).lexically_normal().string();
        if (fileExists(folder + "/LASTCLIP.TXT")) return folder;
    }
    return {};
}

}  // namespace qrx::tool
