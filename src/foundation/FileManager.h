#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"
#include "foundation/FileQuestions.h"
#include "foundation/FolderListing.h"

namespace qrx {

/// The file tree as an object that can be handed out and kept. Holds no state: every answer is read
/// anew, and it may be used from any thread.
class FileManager {
public:
    [[nodiscard]] bool itemExistsAtPath(const FilePath& path) const { return itemExists(path); }
    [[nodiscard]] bool folderExistsAtPath(const FilePath& path) const { return folderExists(path); }
    /// The names one level down, in name order; nothing when there is no folder to be read.
    [[nodiscard]] std::optional<std::vector<std::string>> contentsOfDirectoryAtPath(
        const FilePath& path) const {
        return namesInFolder(path);
    }
};

}  // namespace qrx
