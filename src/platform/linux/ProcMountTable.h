#pragma once

#include <filesystem>
#include <vector>

#include "platform/ports/MountTable.h"

namespace qrx::platform {

/// The kernel's own table, read anew at every call.
class ProcMountTable final : public MountTable {
public:
    /// @param root  folder that holds `proc`, `sys` and `dev`; tests point it at their own.
    explicit ProcMountTable(std::filesystem::path root = "/");

    /// Empty when the table cannot be read.
    [[nodiscard]] std::vector<MountEntry> entries() const override;

private:
    std::filesystem::path root_;
};

}  // namespace qrx::platform
