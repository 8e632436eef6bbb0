#include "app/ClipRecord.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include <nlohmann/json.hpp>

#include "foundation/Base64.h"
#include "foundation/Text.h"

namespace qrx {

namespace {

constexpr const char* kFilePath = "filePath";
constexpr const char* kFilePathBytes = "filePathBytes";
constexpr const char* kVolumeTitle = "volumeTitle";
constexpr const char* kQt = "qt";

FilePath pathOf(const nlohmann::json& record) {
    if (const auto path = record.find(kFilePath); path != record.end()) return *path;
    const auto bytes = bytesOfBase64(record.at(kFilePathBytes).get<std::string>());
    if (!bytes) throw std::invalid_argument("filePathBytes is not base64");
    return *bytes;
}

PathDictionary clipOf(std::string_view line) {
    try {
        const nlohmann::json record = nlohmann::json::parse(line);
        return {.filePath = pathOf(record),
                .volumeTitle = record.at(kVolumeTitle),
                .qt = record.at(kQt)};
    } catch (const nlohmann::json::exception& fault) {
        throw std::invalid_argument(fault.what());
    }
}

}  // namespace

void addPath(nlohmann::ordered_json& record, std::string_view path) {
    if (isUtf8(path)) {
        record[kFilePath] = path;
    } else {
        record[kFilePathBytes] = base64(path);
    }
}

nlohmann::ordered_json clipRecord(const PathDictionary& clip) {
    nlohmann::ordered_json record;
    addPath(record, clip.filePath);
    record[kVolumeTitle] = clip.volumeTitle;
    record[kQt] = clip.qt;
    return record;
}

std::vector<PathDictionary> clipsOfLines(std::string_view lines) {
    std::vector<PathDictionary> clips;
    while (!lines.empty()) {
        const std::string_view line = lines.substr(0, lines.find('\n'));
        clips.push_back(clipOf(line));
        lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    }
    return clips;
}

}  // namespace qrx
