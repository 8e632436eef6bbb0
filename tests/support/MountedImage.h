#pragma once

#include <string>

#include "support/TemporaryFolder.h"

namespace qrx::test {

/// A fresh ext4 image, loop-mounted in a folder of its own below /media while this lives. Needs
/// root and a kernel that has loop devices to give.
class MountedImage {
public:
    MountedImage();
    ~MountedImage();
    MountedImage(const MountedImage&) = delete;
    MountedImage& operator=(const MountedImage&) = delete;

    /// Why nothing is mounted; empty when it is.
    [[nodiscard]] const std::string& refusal() const { return refusal_; }
    /// Absolute, no trailing "/".
    [[nodiscard]] const std::string& mountPoint() const { return mountPoint_; }
    /// The file behind it.
    [[nodiscard]] std::string imagePath() const { return folder_ / "card.img"; }

private:
    TemporaryFolder folder_;
    std::string mountPoint_;
    std::string refusal_;
    bool mounted_ = false;
};

}  // namespace qrx::test
