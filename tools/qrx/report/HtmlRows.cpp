#include "qrx/report/HtmlRows.h"

#include <string_view>

#include <fmt/core.h>

#include "foundation/Base64.h"
#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "qrx/report/Durations.h"
#include "qrx/report/HtmlText.h"

namespace qrx::tool {

namespace {

/// A recording of more pieces than this may be printed across pages.
constexpr std::size_t kPiecesOnAPage = 8;

std::string cell(std::string_view classes, const std::string& text) {
    return fmt::format("<td class=\"{}\">{}</td>", classes, text);
}

/// With the number by which it is sorted.
std::string numberCell(std::string_view classes, const std::string& sortedBy,
                       const std::string& text) {
    return fmt::format("<td class=\"{}\" data-v=\"{}\">{}</td>", classes, sortedBy, text);
}

std::string textOf(const std::optional<std::string>& text) {
    return text && !text->empty() ? htmlShown(*text) : std::string(kNotKnown);
}

std::string posterCell(const ReportClip& clip, const std::string& name) {
    const Poster& poster = clip.poster;
    if (poster.jpeg.empty()) {
        return "<td class=\"poster-cell\"><div class=\"poster\">no picture</div></td>";
    }
    return fmt::format(
        "<td class=\"poster-cell\"><div class=\"poster\"><img alt=\"Poster of {}\" "
        "width=\"{}\" height=\"{}\" loading=\"lazy\" decoding=\"async\" "
        "src=\"data:image/jpeg;base64,{}\"></div></td>",
        name, poster.width, poster.height, base64(poster.jpeg));
}

std::string audioText(const ReportClip& clip) {
    std::string text;
    if (clip.audioFiles && *clip.audioFiles > 0) text = counted(*clip.audioFiles, "file", "files");
    if (clip.audioStreams && (*clip.audioStreams > 0 || text.empty())) {
        if (!text.empty()) text += ", ";
        text += *clip.audioStreams == 0 ? "none" : counted(*clip.audioStreams, "track", "tracks");
    }
    return text.empty() ? std::string(kNotKnown) : text;
}

std::string audioNumber(const ReportClip& clip) {
    if (audioText(clip) == kNotKnown) return {};
    return std::to_string(clip.audioFiles.value_or(0) + clip.audioStreams.value_or(0));
}

std::string pictureText(const ReportClip& clip) {
    std::string text;
    if (clip.width && clip.height) text = fmt::format("{} × {}", *clip.width, *clip.height);
    if (clip.codec) text += (text.empty() ? "" : ", ") + htmlShown(*clip.codec);
    return text.empty() ? text : "<small>" + text + "</small>";
}

std::string rateNumber(const ReportClip& clip) {
    if (!clip.frameRate) return {};
    if (*clip.frameRate == "PAL") return "25";
    const auto rate = framesPerSecond(*clip.frameRate);
    return rate ? fmt::format("{:.3f}", *rate) : std::string();
}

bool isEmpty(const ReportClip& clip) {
    return clip.bytes == 0U;
}

std::string clipRow(const ReportClip& clip, bool withPosters) {
    const std::string name = htmlShown(lastPathComponent(clip.file));
    std::string row = "<tr class=\"clip\">";
    row += numberCell("n", std::to_string(clip.position), countForPeople(clip.position));
    if (withPosters) row += posterCell(clip, name);
    row += fmt::format(
        "<th scope=\"row\"><bdi title=\"{}\">{}</bdi>{}{}</th>", htmlShown(clip.file), name,
        isEmpty(clip) ? " <span class=\"badge\">empty file</span>" : "", pictureText(clip));
    row += cell("tc t", textOf(clip.startTimecode));
    row += cell("tc t", textOf(clip.endTimecode));
    row += numberCell("t", rateNumber(clip), textOf(clip.frameRate));
    row += cell(
        "t", clip.isDropFrame ? (*clip.isDropFrame ? "drop" : "non-drop") : std::string(kNotKnown));
    row += numberCell("n", clip.seconds ? fmt::format("{:.3f}", *clip.seconds) : std::string(),
                      clip.seconds ? durationForPeople(*clip.seconds) : std::string(kNotKnown));
    row += numberCell("n", clip.bytes ? std::to_string(*clip.bytes) : std::string(),
                      clip.bytes ? sizeForPeople(*clip.bytes) : std::string(kNotKnown));
    row += numberCell("t", audioNumber(clip), audioText(clip));
    row += cell("id", textOf(clip.uniqueIdentifier));
    return row + "</tr>\n";
}

std::string missingRow(const ReportPiece& piece, bool withPosters) {
    return fmt::format(
        "<tr class=\"missing\"><td></td>{}<th scope=\"row\" colspan=\"9\">"
        "<span class=\"badge\">{}</span> <bdi>{}</bdi></th></tr>\n",
        withPosters ? "<td class=\"poster-cell\"></td>" : "",
        piece.missingCount == 1 ? "missing" : countForPeople(piece.missingCount) + " missing",
        htmlShown(piece.missingName));
}

std::string completeness(const ReportRecording& recording) {
    if (const std::size_t missing = recording.missing(); missing > 0) {
        return fmt::format("<span class=\"warn\">{} missing</span>", countForPeople(missing));
    }
    if (!recording.isComplete) return "whether all are there cannot be told";
    return *recording.isComplete ? "complete"
                                 : "<span class=\"warn\">links contradict each other</span>";
}

std::string seriesHead(const ReportRecording& recording, bool withPosters) {
    std::string others;
    for (const FilePath& card : recording.otherCards) {
        others +=
            (others.empty() ? " · goes on on " : ", ") + ("<bdi>" + htmlShown(card) + "</bdi>");
    }
    return fmt::format(
        "<tr class=\"series-head\"><th scope=\"rowgroup\" colspan=\"{}\">Spanned recording "
        "<bdi>{}</bdi> <span>· {} · {}{}</span></th></tr>\n",
        withPosters ? 11 : 10, htmlShown(recording.spanKey),
        counted(recording.clips(), "piece", "pieces"), completeness(recording), others);
}

bool hasProblem(const ReportRecording& recording) {
    if (recording.missing() > 0 || recording.isComplete == false) return true;
    for (const ReportPiece& piece : recording.pieces) {
        if (piece.clip && isEmpty(*piece.clip)) return true;
    }
    return false;
}

std::string bodyClasses(const ReportRecording& recording) {
    std::string classes;
    if (recording.isSpanned()) classes += " series";
    if (hasProblem(recording)) classes += " flagged";
    if (recording.pieces.size() > kPiecesOnAPage) classes += " long";
    return classes.empty() ? classes : " class=\"" + classes.substr(1) + "\"";
}

/// The path from the card on, which is what its folders say.
std::string belowCard(const FilePath& path, const FilePath& card) {
    const std::string folder = endsWith(card, "/") ? card : card + "/";
    return path.size() > folder.size() && path.compare(0, folder.size(), folder) == 0
               ? path.substr(folder.size())
               : path;
}

}  // namespace

std::string recordingRows(const ReportRecording& recording, bool withPosters) {
    std::string rows = "<tbody" + bodyClasses(recording) + ">";
    if (recording.isSpanned()) rows += seriesHead(recording, withPosters);
    for (const ReportPiece& piece : recording.pieces) {
        rows += piece.clip ? clipRow(*piece.clip, withPosters) : missingRow(piece, withPosters);
    }
    return rows + "</tbody>\n";
}

std::string unclaimedRow(const UnclaimedGroup& group, const FilePath& card) {
    std::string examples;
    for (const FilePath& example : group.examples) {
        examples += (examples.empty() ? "<bdi>" : ", <bdi>") + htmlShown(belowCard(example, card)) +
                    "</bdi>";
    }
    if (group.files > group.examples.size()) examples += ", …";
    return fmt::format(
        "<tr{}><th scope=\"row\">{}{}</th><td>{}</td><td class=\"n\">{}</td>"
        "<td class=\"n\">{}</td><td class=\"path\">{}</td></tr>\n",
        group.mayBeFootage ? " class=\"footage\"" : "", htmlShown(group.reason),
        group.mayBeFootage ? " <span class=\"badge\">may be footage</span>" : "",
        group.kind.empty() ? std::string(kNotKnown) : htmlShown(group.kind),
        countForPeople(group.files), sizeForPeople(group.bytes), examples);
}

std::string durationOf(const ReportTotals& totals) {
    if (totals.clips == totals.withoutDuration) return std::string(kNotKnown);
    return durationForPeople(totals.seconds);
}

std::string durationWithGaps(const ReportTotals& totals) {
    const bool hasGaps = totals.withoutDuration > 0 && totals.withoutDuration < totals.clips;
    return durationOf(totals) +
           (hasGaps ? fmt::format(" + {} not known", countForPeople(totals.withoutDuration)) : "");
}

}  // namespace qrx::tool
