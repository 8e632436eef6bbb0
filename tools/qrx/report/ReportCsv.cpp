#include <cmath>
#include <string>

#include <fmt/core.h>

#include "foundation/Base64.h"
#include "foundation/Text.h"
#include "qrx/ShownText.h"
#include "qrx/report/ReportWriters.h"

namespace qrx::tool {

namespace {

constexpr std::string_view kHeader =
    "card,volumeTitle,position,filePath,startTimecode,endTimecode,frameRate,dropFrame,"
    "durationSeconds,bytes,uniqueIdentifier,audioFiles,audioStreams,width,height,codec,spanKey,"
    "spanPiece,spanMissing,filePathBytes\r\n";

std::string quoted(std::string_view text) {
    if (text.find_first_of("\",\r\n") == std::string_view::npos) return std::string(text);
    return '"' + replaceAll(text, "\"", "\"\"") + '"';
}

/// A value on one line.
std::string field(std::string_view text) {
    return quoted(shown(text));
}

std::string fieldOrNothing(const std::optional<std::string>& text) {
    return text ? field(*text) : std::string();
}

template <class Number>
std::string number(const std::optional<Number>& value) {
    return value ? fmt::format("{}", *value) : std::string();
}

std::string yesOrNo(const std::optional<bool>& value) {
    if (!value) return {};
    return *value ? "true" : "false";
}

bool mayStandPlainly(std::string_view path) {
    return path.find('\n') == std::string_view::npos && isPlainText(path);
}

std::string record(const ReportCard& card, const ReportLayout& layout,
                   const ReportRecording& recording, const ReportClip& clip, std::size_t piece) {
    const bool plainly = mayStandPlainly(clip.file);
    const bool isSpanned = recording.isSpanned();
    std::string text = field(card.root) + "," + field(layout.title) + "," +
                       std::to_string(clip.position) + "," +
                       (plainly ? quoted(clip.file) : std::string());
    const auto add = [&text](const std::string& value) { text += "," + value; };
    add(fieldOrNothing(clip.startTimecode));
    add(fieldOrNothing(clip.endTimecode));
    add(fieldOrNothing(clip.frameRate));
    add(yesOrNo(clip.isDropFrame));
    add(clip.seconds ? fmt::format("{:.3f}", *clip.seconds) : std::string());
    add(number(clip.bytes));
    add(fieldOrNothing(clip.uniqueIdentifier));
    add(number(clip.audioFiles));
    add(number(clip.audioStreams));
    add(number(clip.width));
    add(number(clip.height));
    add(fieldOrNothing(clip.codec));
    add(field(recording.spanKey));
    add(isSpanned ? std::to_string(piece) : std::string());
    add(isSpanned ? std::to_string(recording.missing()) : std::string());
    add(plainly ? std::string() : base64(clip.file));
    return text + "\r\n";
}

}  // namespace

void writeReportCsv(const Report& report, const TakeText& take) {
    if (!take(kHeader)) return;
    for (const ReportCard& card : report.cards) {
        for (const ReportLayout& layout : card.layouts) {
            for (const ReportRecording& recording : layout.recordings) {
                std::size_t number = 0;
                for (const ReportPiece& piece : recording.pieces) {
                    if (!piece.clip) continue;
                    if (!take(record(card, layout, recording, *piece.clip, ++number))) return;
                }
            }
        }
    }
}

}  // namespace qrx::tool
