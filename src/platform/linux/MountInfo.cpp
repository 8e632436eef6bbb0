#include "platform/linux/MountInfo.h"

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <optional>

namespace qrx::platform {

namespace {

constexpr std::size_t kDeviceNumberField = 2;
constexpr std::size_t kMountPointField = 4;
constexpr std::size_t kFirstOptionalField = 6;  // any number of these, then "-"

std::vector<std::string_view> pieces(std::string_view text, char separator) {
    std::vector<std::string_view> found;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find(separator, start);
        found.push_back(text.substr(start, end - start));
        if (end == std::string_view::npos) return found;
        start = end + 1;
    }
}

bool isOctal(char digit) {
    return digit >= '0' && digit <= '7';
}

std::optional<MountInfoLine> parsedLine(std::string_view line) {
    const std::vector<std::string_view> fields = pieces(line, ' ');
    if (fields.size() <= kFirstOptionalField) return std::nullopt;
    const auto dash = std::find(fields.begin() + kFirstOptionalField, fields.end(), "-");
    if (std::distance(dash, fields.end()) < 3) return std::nullopt;
    return MountInfoLine{.deviceNumber = std::string(fields[kDeviceNumberField]),
                         .mountPoint = octalEscapesUndone(fields[kMountPointField]),
                         .fileSystemType = octalEscapesUndone(*std::next(dash)),
                         .source = octalEscapesUndone(*std::next(dash, 2))};
}

}  // namespace

std::string octalEscapesUndone(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    while (!text.empty()) {
        const bool escaped = text.size() >= 4 && text[0] == '\\' && text[1] <= '3' &&
                             std::all_of(text.begin() + 1, text.begin() + 4, isOctal);
        if (escaped) {
            plain.push_back(
                static_cast<char>((text[1] - '0') * 64 + (text[2] - '0') * 8 + (text[3] - '0')));
        } else {
            plain.push_back(text.front());
        }
        text.remove_prefix(escaped ? 4 : 1);
    }
    return plain;
}

std::vector<MountInfoLine> parsedMountInfo(std::string_view table) {
    std::vector<MountInfoLine> lines;
    for (const std::string_view line : pieces(table, '\n')) {
        if (std::optional<MountInfoLine> parsed = parsedLine(line)) {
            lines.push_back(*std::move(parsed));
        }
    }
    return lines;
}

std::vector<MountInfoLine> mountsBelow(const std::filesystem::path& root) {
    std::ifstream file(root / "proc/self/mountinfo", std::ios::binary);
    const std::string table{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return parsedMountInfo(table);
}

}  // namespace qrx::platform
