#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace qrx::tool {

enum class Existing {
    kept,      ///< what is there already stays, and nothing is written
    replaced,  ///< it is replaced whole, at once
};

/// Writes a file so that at every moment it is there whole, or not at all. The bytes go to a file
/// beside it, which then takes its name; that is removed on a fault.
/// Throws std::system_error when it cannot be written, with EEXIST when something is there that is
/// to be kept.
void writeNewFile(const std::string& path, std::span<const std::byte> contents, Existing existing);

}  // namespace qrx::tool
