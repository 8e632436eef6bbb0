#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/ports/VolumeIdentity.h"

namespace qrx::platform {

/// Asks the links that the device manager keeps in /dev/disk first, which any user may read, then
/// the headers on the device itself (libblkid), which needs the right to read it.
class BlkidVolumeIdentity final : public VolumeIdentity {
public:
    /// @param root  folder that holds `proc` and `dev`; tests point it at their own.
    explicit BlkidVolumeIdentity(std::filesystem::path root = "/");

    [[nodiscard]] std::optional<VolumeDescription> describe(
        const std::string& mountPoint) const override;

private:
    std::filesystem::path root_;
};

}  // namespace qrx::platform
