#include <cmath>
#include <string>
#include <utility>

#include <fmt/chrono.h>
#include <nlohmann/json.hpp>

#include "app/ClipRecord.h"
#include "qrx/JsonText.h"
#include "qrx/report/ReportWriters.h"

namespace qrx::tool {

namespace {

using Json = nlohmann::ordered_json;

template <class Value>
Json valueJson(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

/// To the millisecond.
double rounded(double seconds) {
    constexpr double kPerSecond = 1000;
    return std::round(seconds * kPerSecond) / kPerSecond;
}

Json totalsJson(const ReportTotals& totals) {
    Json record;
    record["clips"] = totals.clips;
    record["files"] = totals.files;
    record["bytes"] = totals.bytes;
    record["durationSeconds"] = rounded(totals.seconds);
    record["clipsWithoutDuration"] = totals.withoutDuration;
    record["missingPieces"] = totals.missingPieces;
    return record;
}

Json pathJson(const FilePath& path) {
    Json record;
    addPath(record, path);
    return record;
}

Json spanJson(const ReportRecording& recording, std::size_t piece) {
    if (!recording.isSpanned()) return nullptr;
    Json record;
    record["spanKey"] = textJson(recording.spanKey);
    record["piece"] = piece;
    record["pieces"] = recording.clips();
    record["complete"] = valueJson(recording.isComplete);
    record["missing"] = Json::array();
    for (const ReportPiece& each : recording.pieces) {
        if (!each.clip) record["missing"].push_back(textJson(each.missingName));
    }
    record["otherCards"] = Json::array();
    for (const FilePath& card : recording.otherCards) {
        record["otherCards"].push_back(textJson(card));
    }
    return record;
}

Json clipJson(const ReportCard& card, const ReportLayout& layout, const ReportRecording& recording,
              const ReportClip& clip, std::size_t piece) {
    Json record = pathJson(clip.file);
    record["card"] = textJson(card.root);
    record["volumeTitle"] = layout.title;
    record["position"] = clip.position;
    record["startTimecode"] = textJson(clip.startTimecode);
    record["endTimecode"] = textJson(clip.endTimecode);
    record["frameRate"] = textJson(clip.frameRate);
    record["dropFrame"] = valueJson(clip.isDropFrame);
    record["durationSeconds"] = clip.seconds ? Json(rounded(*clip.seconds)) : Json();
    record["bytes"] = valueJson(clip.bytes);
    record["uniqueIdentifier"] = textJson(clip.uniqueIdentifier);
    record["audioFiles"] = valueJson(clip.audioFiles);
    record["audioStreams"] = valueJson(clip.audioStreams);
    record["width"] = valueJson(clip.width);
    record["height"] = valueJson(clip.height);
    record["codec"] = textJson(clip.codec);
    record["span"] = spanJson(recording, piece);
    return record;
}

Json cardJson(const ReportCard& card) {
    Json record = pathJson(card.root);
    record["label"] = card.label.empty() ? Json() : textJson(card.label);
    record["totals"] = totalsJson(card.totals);
    record["layouts"] = Json::array();
    for (const ReportLayout& layout : card.layouts) {
        Json entry;
        entry["volumeTitle"] = layout.title;
        entry["totals"] = totalsJson(layout.totals);
        record["layouts"].push_back(std::move(entry));
    }
    record["unclaimed"] = Json::array();
    for (const UnclaimedGroup& group : card.unclaimed) {
        Json entry;
        entry["reason"] = group.reason;
        entry["kind"] = group.kind.empty() ? Json() : textJson(group.kind);
        entry["mayBeFootage"] = group.mayBeFootage;
        entry["files"] = group.files;
        entry["bytes"] = group.bytes;
        entry["examples"] = Json::array();
        for (const FilePath& example : group.examples) {
            entry["examples"].push_back(pathJson(example));
        }
        record["unclaimed"].push_back(std::move(entry));
    }
    return record;
}

Json headJson(const Report& report) {
    Json head;
    head["made"] = fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", fmt::gmtime(report.made));
    head["paths"] = Json::array();
    for (const std::string& path : report.paths) {
        head["paths"].push_back(textJson(path));
    }
    head["problems"] = report.problems;
    head["totals"] = totalsJson(report.totals);
    head["cards"] = Json::array();
    for (const ReportCard& card : report.cards) {
        head["cards"].push_back(cardJson(card));
    }
    return head;
}

/// Hands over one record at a time.
class ClipRecords {
public:
    explicit ClipRecords(const TakeText& take) : take_(take) {}

    bool add(const Json& record) {
        return take_(std::exchange(between_, ",\n    ") + jsonText(record, -1));
    }

private:
    const TakeText& take_;
    std::string between_ = "\n    ";
};

bool writeClips(const Report& report, ClipRecords& records) {
    for (const ReportCard& card : report.cards) {
        for (const ReportLayout& layout : card.layouts) {
            for (const ReportRecording& recording : layout.recordings) {
                std::size_t number = 0;
                for (const ReportPiece& piece : recording.pieces) {
                    if (!piece.clip) continue;
                    if (!records.add(clipJson(card, layout, recording, *piece.clip, ++number))) {
                        return false;
                    }
                }
            }
        }
    }
    return true;
}

}  // namespace

void writeReportJson(const Report& report, const TakeText& take) {
    constexpr int kIndent = 2;
    std::string head = jsonText(headJson(report), kIndent);
    head.resize(head.rfind('\n'));  // the end of the object comes after the clips
    if (!take(head + ",\n  \"clips\": [")) return;
    ClipRecords records(take);
    if (!writeClips(report, records)) return;
    take(report.totals.clips == 0 ? "]\n}\n" : "\n  ]\n}\n");
}

}  // namespace qrx::tool
