#include "support/MountedImage.h"

#include <cstdlib>
#include <filesystem>
#include <vector>

#include <unistd.h>

#include "platform/linux/PosixProcessRunner.h"

namespace qrx::test {

namespace {

bool succeeds(const std::string& tool, const std::vector<std::string>& arguments) {
    platform::PosixProcessRunner runner;
    for (const char* folder : {"/usr/sbin/", "/usr/bin/", "/sbin/", "/bin/"}) {
        const std::string path = folder + tool;
        if (::access(path.c_str(), X_OK) == 0) {
            return runner.run({path, arguments, platform::StandardError::captured}).exitStatus == 0;
        }
    }
    return false;
}

}  // namespace

MountedImage::MountedImage() {
    if (::geteuid() != 0) {
        refusal_ = "mounting needs root";
        return;
    }
    std::string pattern = "/media/qrx-test-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
        refusal_ = "no folder can be made below /media";
        return;
    }
    mountPoint_ = pattern;
    const std::string image = folder_.write("card.img");
    std::filesystem::resize_file(image, std::uintmax_t{2} << 20U);
    if (!succeeds("mkfs.ext4", {"-q", "-F", image})) {
        refusal_ = "mkfs.ext4 makes no image";
    } else if (!succeeds("mount", {"-o", "loop", image, mountPoint_})) {
        refusal_ = "the kernel refuses loop mounts";
    } else {
        mounted_ = true;
    }
}

MountedImage::~MountedImage() {
    if (mounted_ && !succeeds("umount", {mountPoint_})) {
        static_cast<void>(succeeds("umount", {"-l", mountPoint_}));
    }
    if (!mountPoint_.empty()) ::rmdir(mountPoint_.c_str());
}

}  // namespace qrx::test
