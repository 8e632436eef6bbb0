#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FilePath.h"
#include "qrx/spans/NumberGaps.h"
#include "qrx/spans/P2Chain.h"
#include "volumes/QRXHDMediaVolumeUtilityObject.h"

namespace qrx::tool {

/// A recording that the camera split over several clips.
struct Series {
    std::string volumeTitle{};
    std::string spanKey{};
    std::string volumeKey{};
    FilePaths pieces{};  ///< in playing order
    std::vector<P2Link> missingClips{};
    std::vector<NumberGap> missingNumbers{};
    /// Absent: cannot be told.
    std::optional<bool> isComplete{};

    [[nodiscard]] bool missesPieces() const {
        return !missingClips.empty() || !missingNumbers.empty();
    }
};

/// The spanned recordings among `clips`, which are all of `utility`'s layout. Empty when the layout
/// splits none; cut short when cancelled.
[[nodiscard]] std::vector<Series> seriesAmong(const QRXHDMediaVolumeUtilityObject& utility,
                                              const FilePaths& clips,
                                              const std::atomic<bool>& isCancelled);

}  // namespace qrx::tool
