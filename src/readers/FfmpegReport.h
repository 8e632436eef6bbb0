#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qrx {

// What the ffmpeg tool's report ("ffmpeg -i FILE") says, as text in and values out. The report is
// made for people; the values are taken from it verbatim, blanks and units included.

/// The part of `report` from the first `label` to the first separator after the START of the label,
/// with every `label` in it removed: for "Duration: " and ",", the text
/// "Duration: 00:01:02.03, start: 0.0" gives "00:01:02.03". Nothing when label or separator is
/// missing or empty.
[[nodiscard]] std::optional<std::string> reportField(std::string_view report,
                                                     std::string_view label,
                                                     std::string_view separator);

/// One metadata value that a report yields.
struct ReportedValue {
    std::string_view identifier;  ///< one of MetadataIdentifiers.h
    std::string value;
};

/// The values that the last input of `report` yields, in the order in which they are to be set.
/// Nothing when the report names no input at all.
[[nodiscard]] std::optional<std::vector<ReportedValue>> valuesOfFfmpegReport(
    std::string_view report);

/// Bytes that a tool wrote, as text. A byte that is not UTF-8 (names on cards, old tags) is read as
/// the Latin-1 character of that number, so that one such byte does not cost the whole report.
[[nodiscard]] std::string textOfToolOutput(std::string bytes);

}  // namespace qrx
