#pragma once

#include <optional>
#include <string>

#include "foundation/FilePath.h"

namespace qrx {

// Disk images of folders: `hdiutil` does it where it is installed, else `xorriso` writes an image
// that carries the volume name, and `udisksctl` or, as root, `mount` brings it in.

/// outputFolder "/" imageName, with ".dmg" appended unless it ends so. KEPT: ".DMG" is no such end.
[[nodiscard]] FilePath diskImagePath(const FilePath& outputFolder, const std::string& imageName);

/// Writes an image of the folder. Nothing when `folder` is none, when the image exists already, or
/// when the tool is missing or fails.
[[nodiscard]] std::optional<FilePath> writtenDiskImage(const FilePath& folder,
                                                       const std::string& imageName,
                                                       const FilePath& outputFolder,
                                                       const std::string& volumeName);

/// Mounts an image, read-only; at `mountPoint` when one is given. NO when the image or the mount
/// point does not exist, or the tool fails.
[[nodiscard]] bool mountDiskImage(const FilePath& image, const std::optional<FilePath>& mountPoint);

// The lines that the operations stand for, for the log; no shell is ever given them.

[[nodiscard]] std::string createImageLine(const std::string& tool, const FilePath& image,
                                          const FilePath& folder, const std::string& volumeName);
[[nodiscard]] std::string attachImageLine(const std::string& tool, const FilePath& image,
                                          const std::optional<FilePath>& mountPoint);

}  // namespace qrx
