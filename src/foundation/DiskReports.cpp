#include "foundation/DiskReports.h"

#include <algorithm>
#include <cstddef>

#include "foundation/PathText.h"
#include "foundation/Text.h"

namespace qrx {

namespace {

constexpr double kBytesPerKilobyte = 1024.0;
constexpr double kBytesPerMegabyte = 1024.0 * 1024.0;
constexpr double kLeastRate = 1.0;  // MB/s; a disk that moves less is idle

std::string padded(std::string text, std::size_t width) {
    if (text.size() < width) text.insert(0, width - text.size(), ' ');
    return text;
}

std::string decimalSize(std::uint64_t bytes) {
    constexpr double kGigabyte = 1e9;
    constexpr double kMegabyte = 1e6;
    const auto value = static_cast<double>(bytes);
    return value >= kGigabyte ? fixedDecimals(value / kGigabyte, 1) + " GB"
                              : fixedDecimals(value / kMegabyte, 1) + " MB";
}

std::string listLine(std::size_t index, std::string_view name, std::uint64_t bytes,
                     const std::string& identifier) {
    constexpr std::size_t kIndexWidth = 4;
    constexpr std::size_t kTypeWidth = 27;
    constexpr std::size_t kNameWidth = 24;
    constexpr std::size_t kSizeWidth = 10;
    std::string line = padded(std::to_string(index), kIndexWidth) + ":";
    line += padded("Volume", kTypeWidth) + " " + std::string(name);
    if (name.size() < kNameWidth) line.append(kNameWidth - name.size(), ' ');
    return line + padded(decimalSize(bytes), kSizeWidth) + "   " + identifier + "\n";
}

/// The figures of one disk in one row.
std::string figures(const platform::DiskTraffic& traffic, double seconds) {
    const double interval = seconds > 0 ? seconds : 1.0;
    const auto bytes = static_cast<double>(traffic.bytes);
    const auto transfers = static_cast<double>(traffic.transfers);
    const double perTransfer = transfers > 0 ? bytes / kBytesPerKilobyte / transfers : 0.0;
    return " " + padded(fixedDecimals(perTransfer, 2), 7) + " " +
           padded(fixedDecimals(transfers / interval, 0), 4) + " " +
           padded(fixedDecimals(bytes / kBytesPerMegabyte / interval, 2), 5) + " ";
}

/// The tokens of a traffic report, sorted into labels and values.
struct TrafficTokens {
    std::vector<std::string> labels;
    std::vector<double> values;
};

TrafficTokens tokensOf(std::string_view report) {
    TrafficTokens tokens;
    for (const std::string& piece : split(report, " ")) {
        const std::string token = lowerCased(trimBlanksAndLineEnds(piece));
        if (token.empty() || beginsWith(token, "disk")) continue;
        if (token.front() >= '0' && token.front() <= '9') {
            tokens.values.push_back(doubleValue(token));
        } else {
            tokens.labels.push_back(token);
        }
    }
    return tokens;
}

/// Position among the labels of the "mb/s" label number `disk`; 0 when there are fewer.
std::size_t rateColumn(const std::vector<std::string>& labels, unsigned disk) {
    unsigned seen = 0;
    for (std::size_t column = 0; column < labels.size(); ++column) {
        if (labels[column] != "mb/s") continue;
        if (seen == disk) return column;
        ++seen;
    }
    return 0;
}

}  // namespace

std::string diskListReport(const std::vector<platform::Disk>& disks) {
    std::string report;
    for (std::size_t n = 0; n < disks.size(); ++n) {
        const std::string identifier = "disk" + std::to_string(n);
        report += "/dev/" + identifier + "\n";
        report +=
            "   #:                       TYPE NAME                    SIZE       IDENTIFIER\n";
        report += listLine(0, "", disks[n].bytes, identifier);
        for (std::size_t i = 0; i < disks[n].parts.size(); ++i) {
            const platform::DiskPart& part = disks[n].parts[i];
            report += listLine(i + 1, part.volumeName, part.bytes,
                               identifier + "s" + std::to_string(i + 1));
        }
    }
    return report;
}

unsigned diskNumberInReport(std::string_view report, const FilePath& path) {
    constexpr std::string_view kVolumesFolder = "/Volumes/";
    constexpr std::size_t kNameAt = 2;  // after "/" and "Volumes"
    const std::vector<std::string> components = pathComponents(path);
    if (!beginsWith(path, kVolumesFolder) || components.size() <= kNameAt) return 0;
    const std::vector<std::string> pieces = split(report, "/dev/disk");
    const auto piece = std::find_if(pieces.begin(), pieces.end(), [&](const std::string& text) {
        return contains(text, components[kNameAt]);
    });
    if (piece == pieces.end()) return 0;
    const std::int32_t number = int32Value(std::string_view(*piece).substr(0, 1));
    return static_cast<std::size_t>(number) <= components.size() ? static_cast<unsigned>(number)
                                                                 : 0;
}

std::string trafficReport(const std::vector<TrafficRow>& rows) {
    if (rows.empty() || rows.front().traffic.empty()) return {};
    const std::size_t disks = rows.front().traffic.size();
    std::string report;
    for (std::size_t n = 0; n < disks; ++n) {
        report += padded("disk" + std::to_string(n), 19) + " ";
    }
    report += "\n";
    for (std::size_t n = 0; n < disks; ++n) {
        report += "    KB/t  tps  MB/s ";
    }
    report += "\n";
    for (const TrafficRow& row : rows) {
        for (const platform::DiskTraffic& traffic : row.traffic) {
            report += figures(traffic, row.seconds);
        }
        report += "\n";
    }
    return report;
}

std::optional<double> throughputInReport(std::string_view report, unsigned disk) {
    const TrafficTokens tokens = tokensOf(report);
    if (tokens.labels.empty()) return std::nullopt;  // no step to walk the values by
    double sum = 0;
    double count = 0;
    for (std::size_t at = rateColumn(tokens.labels, disk); at < tokens.values.size();
         at += tokens.labels.size()) {
        sum += tokens.values[at];
        count += 1;
    }
    const double rate = count > 0 ? sum / count : 0;
    if (rate < kLeastRate) return std::nullopt;
    return rate;
}

}  // namespace qrx
