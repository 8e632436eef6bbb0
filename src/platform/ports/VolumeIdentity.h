#pragma once

#include <optional>
#include <string>

namespace qrx::platform {

/// What a mounted volume's own headers say.
struct VolumeDescription {
    std::string mountPoint;
    std::string device;          ///< e.g. "/dev/sdb1"
    std::string fileSystemType;  ///< e.g. "exfat"
    std::string label;           ///< "" when it has none
    std::string uuid;            ///< as the file system writes it; "" when it has none
};

class VolumeIdentity {
public:
    virtual ~VolumeIdentity() = default;

    /// The volume mounted at `mountPoint`; nothing when none is, or no block device stands behind
    /// it.
    [[nodiscard]] virtual std::optional<VolumeDescription> describe(
        const std::string& mountPoint) const = 0;
};

}  // namespace qrx::platform
