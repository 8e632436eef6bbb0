#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "qrx/report/Claims.h"
#include "qrx/report/ReportData.h"

namespace qrx::tool {

/// What a collector is to do and whom it tells.
struct CollectorOptions {
    std::vector<std::string> paths{};  ///< as they were given on the command line
    Exactness exactness = Exactness::quick;
    unsigned jobs = 0;  ///< 0: one a core
    bool makesPosters = true;
    const std::atomic<bool>* isCancelled = nullptr;  ///< never null when it runs
    std::function<void(std::size_t filesDone, std::size_t clipsDone, const FilePath& file)>
        onProgress{};
    /// A path or folder that cannot be looked at, and why; safe to show.
    std::function<void(const std::string& message)> onProblem{};
};

/// Gathers a report. The answer does not depend on the number of jobs. When cancelled it is of no
/// use.
[[nodiscard]] Report collectReport(const CollectorOptions& options);

}  // namespace qrx::tool
