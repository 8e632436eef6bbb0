#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <fmt/chrono.h>
#include <fmt/core.h>

#include "foundation/Base64.h"
#include "foundation/PathText.h"
#include "qrx/ShownText.h"
#include "qrx/report/HtmlRows.h"
#include "qrx/report/HtmlText.h"
#include "qrx/report/PageFiles.h"
#include "qrx/report/ReportWriters.h"

namespace qrx::tool {

namespace {

/// The hash as a policy names it.
std::string hashSource(const PageFile& file) {
    std::string bytes;
    for (std::size_t at = 0; at + 1 < file.sha256.size(); at += 2) {
        const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
        bytes += static_cast<char>(digit(file.sha256[at]) * 16 + digit(file.sha256[at + 1]));
    }
    return "'sha256-" + base64(bytes) + "'";
}

/// Nothing may be loaded, and nothing may run but the page's own script: a name from a card could
/// do no harm even where its escaping failed.
std::string policy() {
    return "default-src 'none'; img-src data:; style-src " + hashSource(pageStyle()) +
           "; script-src " + hashSource(pageScript()) + "; base-uri 'none'; form-action 'none'";
}

std::string nameOfCard(const ReportCard& card) {
    if (!card.label.empty()) return card.label;
    return lastPathComponent(card.root);
}

std::string about(const Report& report) {
    std::string paths;
    for (const std::string& path : report.paths) {
        paths += (paths.empty() ? "" : ", ") + shown(path.empty() ? "''" : path);
    }
    return fmt::format(
        "<p class=\"quiet\">Made <time datetime=\"{:%Y-%m-%dT%H:%M:%SZ}\">{:%Y-%m-%d %H:%M %Z}"
        "</time> with qrx {} of <span class=\"path\"><bdi>{}</bdi></span></p>",
        fmt::gmtime(report.made), fmt::localtime(report.made), QRX_VERSION, htmlText(paths));
}

// ---- figures

std::string figure(std::string_view what, const std::string& value, const std::string& note = "",
                   bool isWarning = false) {
    return fmt::format("<div{}><dt>{}</dt><dd>{}{}</dd></div>\n",
                       isWarning ? " class=\"warn\"" : "", what, value,
                       note.empty() ? "" : "<small>" + note + "</small>");
}

std::string figures(const Report& report) {
    const ReportTotals& totals = report.totals;
    std::string text = "<dl class=\"figures\">\n";
    text += figure("Cards", countForPeople(report.cards.size()));
    text += figure("Clips", countForPeople(totals.clips));
    text += figure("Files", countForPeople(totals.files), "with sidecars and sound");
    text += figure("Size", sizeForPeople(totals.bytes), countForPeople(totals.bytes) + " bytes");
    text += figure("Duration", durationOf(totals),
                   totals.withoutDuration == 0
                       ? ""
                       : "of " + counted(totals.withoutDuration, "clip", "clips") + " not known");
    if (totals.missingPieces > 0) {
        text += figure("Missing pieces", countForPeople(totals.missingPieces),
                       "of spanned recordings", true);
    }
    return text + "</dl>\n";
}

std::string problems(const Report& report) {
    if (report.problems.empty()) return {};
    std::string text =
        "<div class=\"notice\"><p><strong>Not everything could be looked at</strong></p><ul>\n";
    for (const std::string& problem : report.problems) {
        text += "<li><bdi>" + htmlText(problem) + "</bdi></li>\n";
    }
    return text + "</ul></div>\n";
}

std::string totalsCells(const ReportTotals& totals) {
    return fmt::format(
        "<td class=\"n\">{}</td><td class=\"n\">{}</td><td class=\"n\">{}</td>"
        "<td class=\"n\">{}</td><td class=\"n\">{}</td>",
        countForPeople(totals.clips), countForPeople(totals.files), sizeForPeople(totals.bytes),
        durationWithGaps(totals), countForPeople(totals.missingPieces));
}

std::string totalsTable(const Report& report) {
    std::string text =
        "<div class=\"card\"><div class=\"scroll\" role=\"region\" aria-label=\"Totals\" "
        "tabindex=\"0\"><table class=\"plain totals\"><caption>Totals</caption>\n"
        "<thead><tr><th scope=\"col\">Card</th><th scope=\"col\">Layout</th>"
        "<th scope=\"col\" class=\"n\">Clips</th><th scope=\"col\" class=\"n\">Files</th>"
        "<th scope=\"col\" class=\"n\">Size</th><th scope=\"col\" class=\"n\">Duration</th>"
        "<th scope=\"col\" class=\"n\">Missing</th></tr></thead>\n";
    std::size_t number = 0;
    for (const ReportCard& card : report.cards) {
        ++number;
        if (card.layouts.empty()) continue;
        text += fmt::format(
            "<tbody><tr><th scope=\"rowgroup\" rowspan=\"{}\"><a href=\"#card-{}\">"
            "<bdi>{}</bdi></a></th>",
            card.layouts.size(), number, htmlShown(nameOfCard(card)));
        std::string between;
        for (const ReportLayout& layout : card.layouts) {
            text += std::exchange(between, "<tr>") + "<td>" + htmlText(layout.title) + "</td>" +
                    totalsCells(layout.totals) + "</tr>\n";
        }
        text += "</tbody>\n";
    }
    return text + "<tfoot><tr><th scope=\"row\">All</th><td></td>" + totalsCells(report.totals) +
           "</tr></tfoot></table></div></div>\n";
}

// ---- cards

std::string unclaimed(const ReportCard& card) {
    if (card.unclaimed.empty()) return {};
    std::size_t files = 0;
    std::size_t footage = 0;
    for (const UnclaimedGroup& group : card.unclaimed) {
        files += group.files;
        if (group.mayBeFootage) footage += group.files;
    }
    std::string text = fmt::format(
        "<details{}><summary>Not claimed <span>· {}{}</span></summary>\n"
        "<div class=\"scroll\" role=\"region\" aria-label=\"Not claimed\" tabindex=\"0\">"
        "<table class=\"plain unclaimed\"><caption class=\"vh\">Files that no layout "
        "claims</caption>"
        "<thead><tr><th scope=\"col\">Why</th><th scope=\"col\">Kind</th>"
        "<th scope=\"col\" class=\"n\">Files</th><th scope=\"col\" class=\"n\">Size</th>"
        "<th scope=\"col\">Such as</th></tr></thead>\n",
        footage > 0 ? " open" : "", counted(files, "file", "files"),
        footage > 0 ? fmt::format(", {} may be footage", countForPeople(footage)) : "");
    for (const UnclaimedGroup& group : card.unclaimed) {
        text += unclaimedRow(group, card.root);
    }
    return text + "</table></div></details>\n";
}

constexpr std::string_view kColumnsBefore =
    "<colgroup><col class=\"c-no\">{}<col class=\"c-name\"><col class=\"c-tc\">"
    "<col class=\"c-tc\"><col class=\"c-rate\"><col class=\"c-df\"><col class=\"c-dur\">"
    "<col class=\"c-size\"><col class=\"c-audio\"><col class=\"c-id\"></colgroup>\n"
    "<thead><tr><th scope=\"col\" class=\"n\" data-sort=\"number\" data-first>No.</th>{}"
    "<th scope=\"col\" data-sort=\"text\">Clip</th>"
    "<th scope=\"col\" data-sort=\"text\">Timecode in</th>"
    "<th scope=\"col\" data-sort=\"text\">Timecode out</th>"
    "<th scope=\"col\" data-sort=\"number\">Rate</th>"
    "<th scope=\"col\" data-sort=\"text\">Drop</th>"
    "<th scope=\"col\" class=\"n\" data-sort=\"number\">Duration</th>"
    "<th scope=\"col\" class=\"n\" data-sort=\"number\">Size</th>"
    "<th scope=\"col\" data-sort=\"number\">Audio</th>"
    "<th scope=\"col\" data-sort=\"text\">Unique id</th></tr></thead>\n";

std::string tableHead(const std::string& label, const ReportLayout& layout, bool hasPosters) {
    const ReportTotals& totals = layout.totals;
    const std::string title = htmlText(layout.title);
    return fmt::format(
               "<div class=\"layout\"><div class=\"scroll\" role=\"region\" "
               "aria-label=\"{0} on {1}\" tabindex=\"0\">"
               "<table class=\"clips\" data-layout=\"{0}\"><caption>{0} <span>· {2} · {3} · "
               "{4}</span></caption>\n",
               title, label, counted(totals.clips, "clip", "clips"), sizeForPeople(totals.bytes),
               durationWithGaps(totals)) +
           fmt::format(fmt::runtime(kColumnsBefore), hasPosters ? "<col class=\"c-poster\">" : "",
                       hasPosters ? "<th scope=\"col\">Poster</th>" : "");
}

bool hasPosters(const Report& report) {
    for (const ReportCard& card : report.cards) {
        for (const ReportLayout& layout : card.layouts) {
            for (const ReportRecording& recording : layout.recordings) {
                for (const ReportPiece& piece : recording.pieces) {
                    if (piece.clip && !piece.clip->poster.jpeg.empty()) return true;
                }
            }
        }
    }
    return false;
}

bool writeLayout(const std::string& label, const ReportLayout& layout, bool withPosters,
                 const TakeText& take) {
    if (!take(tableHead(label, layout, withPosters))) return false;
    for (const ReportRecording& recording : layout.recordings) {
        if (!take(recordingRows(recording, withPosters))) return false;
    }
    return take("</table></div></div>\n");
}

bool writeCards(const Report& report, const TakeText& take) {
    const bool withPosters = hasPosters(report);
    std::size_t number = 0;
    for (const ReportCard& card : report.cards) {
        const std::string name = htmlShown(nameOfCard(card));
        if (!take(fmt::format("<section class=\"card\" id=\"card-{}\" aria-labelledby=\"name-{}\">"
                              "<header><h2 id=\"name-{}\"><bdi>{}</bdi></h2>"
                              "<p class=\"path\"><bdi>{}</bdi></p></header>\n",
                              number + 1, number + 1, number + 1, name, htmlShown(card.root)))) {
            return false;
        }
        ++number;
        for (const ReportLayout& layout : card.layouts) {
            if (!layout.recordings.empty() && !writeLayout(name, layout, withPosters, take)) {
                return false;
            }
        }
        if (!take(unclaimed(card) + "</section>\n")) return false;
    }
    return report.cards.empty() ? take("<p>There is no file at all.</p>\n") : true;
}

std::string title(const Report& report) {
    std::string names;
    for (const ReportCard& card : report.cards) {
        names += (names.empty() ? "" : ", ") + nameOfCard(card);
    }
    constexpr std::size_t kColumns = 80;
    return htmlText("Camera report" +
                    (names.empty() ? "" : ": " + ShownText(names).fitted(kColumns)));
}

/// Writes what a mark of the template stands for.
bool writePart(std::string_view mark, const Report& report, const TakeText& take) {
    if (mark == "policy") return take(policy());
    if (mark == "generator") return take("qrx " QRX_VERSION);
    if (mark == "title") return take(title(report));
    if (mark == "style") return take(pageStyle().text);
    if (mark == "about") return take(about(report));
    if (mark == "summary") {
        return take(figures(report) + problems(report) + totalsTable(report));
    }
    if (mark == "cards") return writeCards(report, take);
    if (mark == "script") return take(pageScript().text);
    return true;
}

}  // namespace

void writeReportPage(const Report& report, const TakeText& take) {
    constexpr std::string_view kOpen = "{{";
    constexpr std::string_view kClose = "}}";
    std::string_view rest = pageTemplate().text;
    for (auto at = rest.find(kOpen); at != std::string_view::npos; at = rest.find(kOpen)) {
        const auto end = rest.find(kClose, at);
        if (!take(rest.substr(0, at))) return;
        const auto mark = rest.substr(at + kOpen.size(), end - at - kOpen.size());
        if (!writePart(mark, report, take)) return;
        rest.remove_prefix(end + kClose.size());
    }
    take(rest);
}

}  // namespace qrx::tool
