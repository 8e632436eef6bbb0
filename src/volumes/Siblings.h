#pragma once

#include <algorithm>

#include "foundation/FilePath.h"

namespace qrx {

/// The folder that holds the file's folder; the card's own name for "which card" in many layouts.
[[nodiscard]] FilePath grandparentFolder(const FilePath& file);

/// Whether `keyOf` gives one and the same text for all files; NO for an empty list.
template <class KeyOf>
[[nodiscard]] bool allShareOneKey(const FilePaths& files, KeyOf&& keyOf) {
    if (files.empty()) return false;
    const auto key = keyOf(files.front());
    return std::all_of(files.begin(), files.end(),
                       [&](const FilePath& file) { return keyOf(file) == key; });
}

}  // namespace qrx
