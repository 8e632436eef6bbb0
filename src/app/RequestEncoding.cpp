#include "app/RequestEncoding.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "app/ClipRecord.h"
#include "foundation/Text.h"
#include "platform/ports/ServiceBus.h"

namespace qrx {

using platform::BusBytes;
using platform::BusValue;

namespace {

constexpr const char* kFilePath = "filePath";
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
    return clipRecord(dictionary).dump() + "\n";
}

}  // namespace qrx
