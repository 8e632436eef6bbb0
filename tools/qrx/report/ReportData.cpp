#include "qrx/report/ReportData.h"

#include <algorithm>

namespace qrx::tool {

std::size_t ReportRecording::missing() const {
    std::size_t count = 0;
    for (const ReportPiece& piece : pieces) {
        count += piece.missingCount;
    }
    return count;
}

std::size_t ReportRecording::clips() const {
    return static_cast<std::size_t>(
        std::count_if(pieces.begin(), pieces.end(),
                      [](const ReportPiece& piece) { return piece.clip.has_value(); }));
}

void ReportTotals::add(const ReportClip& clip) {
    ++clips;
    ++files;
    bytes += clip.bytes.value_or(0);
    seconds += clip.seconds.value_or(0);
    if (!clip.seconds) ++withoutDuration;
}

void ReportTotals::add(const ReportTotals& other) {
    clips += other.clips;
    files += other.files;
    bytes += other.bytes;
    seconds += other.seconds;
    withoutDuration += other.withoutDuration;
    missingPieces += other.missingPieces;
}

}  // namespace qrx::tool
