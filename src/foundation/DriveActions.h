#pragma once

#include <map>
#include <optional>
#include <string>

#include "foundation/FilePath.h"

namespace qrx {

/// Asks the desktop's keeper of drives to unmount and eject the volume that hosts call
/// `volumeName`. Without such a volume or such a keeper nothing happens.
void ejectVolume(const std::string& volumeName);

/// Asks it to rename the volume `oldName`; the outcome is not examined. Gives `newName`, and
/// nothing when it holds a character that names of folders may not have.
[[nodiscard]] std::optional<std::string> renamedVolume(const std::string& newName,
                                                       const std::string& oldName);

/// Texts by the keys under which hosts know them: "DAVolumePath", "DAMediaBSDName" (the device
/// without "/dev/"), "DAVolumeKind" (the file system), "DAVolumeName" and "DAVolumeUUID" where the
/// volume has them.
using DiskDescription = std::map<std::string, std::string>;

/// Of the volume mounted at `volume`; nothing when none is.
[[nodiscard]] std::optional<DiskDescription> describedVolume(const FilePath& volume);

/// The volume's UUID as its file system writes it; nothing without one.
[[nodiscard]] std::optional<std::string> volumeUuid(const FilePath& volume);

/// A new random UUID (RFC 4122, version 4) as text in capitals: 8-4-4-4-12 digits.
[[nodiscard]] std::string newUuid();

/// Whether `cmp` finds the bytes of two files equal. NO when either cannot be read, and for pipes,
/// sockets and devices, which are not opened.
[[nodiscard]] bool filesHaveEqualBytes(const FilePath& a, const FilePath& b);

/// The line that the comparison stands for, for the log; no shell is ever given it.
[[nodiscard]] std::string compareLine(const std::string& tool, const FilePath& a,
                                      const FilePath& b);

}  // namespace qrx
