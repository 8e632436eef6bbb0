#pragma once

#include <string>

#include "qrx/report/ReportData.h"

namespace qrx::tool {

// Rows of the page's tables.

/// The rows of one recording, in a table body of their own.
[[nodiscard]] std::string recordingRows(const ReportRecording& recording, bool withPosters);

/// One line of what was not claimed; the paths of the examples are told from the card on.
[[nodiscard]] std::string unclaimedRow(const UnclaimedGroup& group, const FilePath& card);

/// "1:02.3"; "–" where the duration of no clip is known.
[[nodiscard]] std::string durationOf(const ReportTotals& totals);
/// "1:02.3 + 2 not known"
[[nodiscard]] std::string durationWithGaps(const ReportTotals& totals);

}  // namespace qrx::tool
