#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/FilePath.h"

namespace qrx {

/// The files by ascending key, equal keys in the order given; nothing when any file has no key.
///
/// @param keyOf  gives a file's key as an optional; asked once for each file.
template <class KeyOf>
[[nodiscard]] std::optional<FilePaths> orderedByKey(const FilePaths& files, KeyOf&& keyOf) {
    using Key = typename decltype(keyOf(files.front()))::value_type;
    std::vector<std::pair<Key, std::size_t>> keys;
    keys.reserve(files.size());
    for (std::size_t i = 0; i < files.size(); ++i) {
        auto key = keyOf(files[i]);
        if (!key) return std::nullopt;
        keys.emplace_back(std::move(*key), i);
    }
    std::stable_sort(keys.begin(), keys.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    FilePaths ordered;
    ordered.reserve(files.size());
    for (const auto& key : keys) {
        ordered.push_back(files[key.second]);
    }
    return ordered;
}

/// The files by name, whatever its case, equal names in the order given: "708_0001_" stands before
/// "708_0001B", and digits go one by one.
[[nodiscard]] FilePaths byNameIgnoringCase(const FilePaths& files);

// Parts of names, in characters (UTF-16 units).

/// The first `count` characters; nothing when there are fewer.
[[nodiscard]] std::optional<std::string> firstCharacters(std::string_view text, std::size_t count);
/// The last `count` characters; nothing when there are fewer.
[[nodiscard]] std::optional<std::string> lastCharacters(std::string_view text, std::size_t count);

}  // namespace qrx
