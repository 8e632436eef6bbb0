#pragma once

#include <string>

#include "foundation/FilePath.h"

namespace qrx {

/// What is told of one claimed file. Travels under the names of its members.
struct PathDictionary {
    FilePath filePath;        ///< as it was found
    std::string volumeTitle;  ///< of the utility that claimed the file
    bool qt = false;          ///< the file is a QuickTime movie, too, whoever claimed it

    bool operator==(const PathDictionary&) const = default;
};

}  // namespace qrx
