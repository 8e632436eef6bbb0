#pragma once

#include <string>
#include <vector>

#include "foundation/FilePath.h"
#include "platform/ports/BusValue.h"
#include "volumes/PathDictionary.h"

namespace qrx {

// How requests and answers of the file matcher travel.

/// {"filePath", "volumeTitle", "qt"}; the path is text when it is UTF-8, else bytes.
[[nodiscard]] platform::BusValue encoded(const PathDictionary& dictionary);
[[nodiscard]] platform::BusValue encoded(const std::vector<PathDictionary>& dictionaries);

/// The reverse; throws platform::BusError when an entry is missing or of another type.
[[nodiscard]] std::vector<PathDictionary> decodedDictionaries(const platform::BusValue& list);

/// Paths from a list of texts or of bytes, one NUL at the end of bytes dropped; throws
/// platform::BusError on anything else.
[[nodiscard]] FilePaths decodedPaths(const platform::BusValue& list);

/// One line of JSON, its line end included: {"filePath":...,"volumeTitle":...,"qt":...}. A path
/// that is not UTF-8 stands as "filePathBytes", in base64, in the place of filePath.
[[nodiscard]] std::string jsonLine(const PathDictionary& dictionary);

}  // namespace qrx
