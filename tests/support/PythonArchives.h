#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/ports/PropertyList.h"
#include "platform/ports/Services.h"
#include "support/TemporaryFolder.h"

namespace qrx::test {

// What Python's plistlib makes of a keyed archive, and archives that it wrote, so that a reader and
// a writer of ours that err alike do not go unnoticed. Needs QRX_PYTHON and QRX_KEYED_ARCHIVE.

inline std::string outputOfArchiveScript(const std::vector<std::string>& arguments) {
    std::vector<std::string> all{QRX_KEYED_ARCHIVE};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const auto result = platform::processRunner().run({QRX_PYTHON, all});
    if (result.exitStatus != 0) throw std::runtime_error("keyed_archive.py failed");
    return result.standardOutput;
}

/// The root object as JSON: keys in order, the class chain under "$classes".
inline std::string readByPython(const std::vector<std::byte>& archive) {
    const TemporaryFolder folder;
    const std::string file =
        folder.write("archive", {reinterpret_cast<const char*>(archive.data()), archive.size()});
    return outputOfArchiveScript({"read", file});
}

/// An archive of the object that `json` describes.
inline std::vector<std::byte> writtenByPython(const std::string& json,
                                              platform::PropertyListFormat format) {
    const TemporaryFolder folder;
    const std::string file = folder.write("object", json);
    const bool binary = format == platform::PropertyListFormat::binary;
    (void)outputOfArchiveScript({"write", binary ? "binary" : "xml", file});
    const std::string bytes = fileContents(file + ".archive");
    const auto* const first = reinterpret_cast<const std::byte*>(bytes.data());
    return {first, first + bytes.size()};
}

}  // namespace qrx::test
