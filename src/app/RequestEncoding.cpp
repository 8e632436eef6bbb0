#include "app/RequestEncoding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <nlohmann/json.hpp>

#include "foundation/Text.h"
#include "platform/ports/ServiceBus.h"

namespace qrx {

using platform::BusBytes;
using platform::BusValue;

namespace {

constexpr const char* kFilePath = "filePath";
constexpr const char* kFilePathBytes = "filePathBytes";
constexpr const char* kVolumeTitle = "volumeTitle";
constexpr const char* kQt = "qt";

[[noreturn]] void refuse(const std::string& what) {
    throw platform::BusError(platform::BusFault::refused, std::string(platform::kInvalidArguments),
                             what);
}

template <class Kind>
const Kind& the(const BusValue& value, const char* what) {
    const Kind* held = value.as<Kind>();
    if (held == nullptr) refuse(std::string(what) + " is of another type");
    return *held;
}

BusValue encodedPath(const FilePath& path) {
    return isUtf8(path) ? BusValue(path) : BusValue(BusBytes{path});
}

FilePath decodedPath(const BusValue& value) {
    if (const auto* text = value.as<std::string>()) return *text;
    std::string bytes = the<BusBytes>(value, kFilePath).bytes;
    if (bytes.ends_with('\0')) bytes.pop_back();
    return bytes;
}

const BusValue& entry(const BusValue::Dictionary& dictionary, const char* key) {
    const auto found = std::find_if(dictionary.begin(), dictionary.end(),
                                    [&](const auto& one) { return one.first == key; });
    if (found == dictionary.end()) refuse(std::string(key) + " is missing");
    return found->second;
}

/// RFC 4648 section 4, with padding.
std::string base64(std::string_view bytes) {
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::size_t kGroup = 3;
    std::string text;
    for (std::size_t at = 0; at < bytes.size(); at += kGroup) {
        const std::string_view group = bytes.substr(at, kGroup);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < kGroup; ++i) {
            bits = bits << 8U | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
        }
        for (std::size_t i = 0; i <= kGroup; ++i) {
            text += i <= group.size() ? kDigits[bits >> (18U - 6U * i) & 0x3FU] : '=';
        }
    }
    return text;
}

}  // namespace

BusValue encoded(const PathDictionary& dictionary) {
    return BusValue::Dictionary{{kFilePath, encodedPath(dictionary.filePath)},
                                {kVolumeTitle, dictionary.volumeTitle},
                                {kQt, dictionary.qt}};
}

BusValue encoded(const std::vector<PathDictionary>& dictionaries) {
    BusValue::List list;
    list.reserve(dictionaries.size());
    for (const PathDictionary& one : dictionaries) {
        list.push_back(encoded(one));
    }
    return list;
}

std::vector<PathDictionary> decodedDictionaries(const BusValue& list) {
    std::vector<PathDictionary> dictionaries;
    for (const BusValue& one : the<BusValue::List>(list, "the list of dictionaries")) {
        const auto& dictionary = the<BusValue::Dictionary>(one, "a dictionary");
        dictionaries.push_back(
            {.filePath = decodedPath(entry(dictionary, kFilePath)),
             .volumeTitle = the<std::string>(entry(dictionary, kVolumeTitle), kVolumeTitle),
             .qt = the<bool>(entry(dictionary, kQt), kQt)});
    }
    return dictionaries;
}

FilePaths decodedPaths(const BusValue& list) {
    FilePaths paths;
    for (const BusValue& one : the<BusValue::List>(list, "the list of locations")) {
        paths.push_back(decodedPath(one));
    }
    return paths;
}

std::string jsonLine(const PathDictionary& dictionary) {
    nlohmann::ordered_json line;
    if (isUtf8(dictionary.filePath)) {
        line[kFilePath] = dictionary.filePath;
    } else {
        line[kFilePathBytes] = base64(dictionary.filePath);
    }
    line[kVolumeTitle] = dictionary.volumeTitle;
    line[kQt] = dictionary.qt;
    return line.dump() + "\n";
}

}  // namespace qrx
