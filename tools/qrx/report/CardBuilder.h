#pragma once

#include <atomic>
#include <memory>
#include <vector>

#include "qrx/report/Claims.h"
#include "qrx/report/ReportData.h"

namespace qrx::tool {

/// A file that was found on the way, with what was found out about it.
struct ReportedFile {
    FilePath path{};
    FilePath location{};  ///< that was named and below which it lies
    FilePath card{};      ///< root of its card
    Claim claim{};
    std::unique_ptr<ReportClip> clip{};  ///< set when it is reported as a clip
    /// Layout of the clip that it belongs to; null when it belongs to none.
    const QRXHDMediaVolumeUtilityObject* companionOf = nullptr;
};

/// The cards in the order in which they are met, each with its layouts, recordings and what was not
/// claimed. Takes the clips out of `files`.
[[nodiscard]] std::vector<ReportCard> cardsOf(std::vector<ReportedFile>& files,
                                              const std::atomic<bool>& isCancelled);

}  // namespace qrx::tool
