#pragma once

#include <string>
#include <vector>

namespace qrx {

/// A path as the file system has it: bytes, nearly always UTF-8, never normalised.
using FilePath = std::string;
using FilePaths = std::vector<FilePath>;

}  // namespace qrx
