#pragma once

#include <functional>
#include <string_view>

#include "qrx/report/ReportData.h"

namespace qrx::tool {

/// Takes the next piece of the text; answers whether to go on.
using TakeText = std::function<bool(std::string_view)>;

/// One self-contained page: no other file, no network.
void writeReportPage(const Report& report, const TakeText& take);
/// RFC 4180, one record a clip, with a header line.
void writeReportCsv(const Report& report, const TakeText& take);
/// One object: what was asked, totals, cards, and one record a clip.
void writeReportJson(const Report& report, const TakeText& take);

}  // namespace qrx::tool
