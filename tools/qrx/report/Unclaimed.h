#pragma once

#include <vector>

#include "qrx/report/Claims.h"
#include "qrx/report/ReportData.h"

namespace qrx::tool {

/// Puts files that nobody claimed together by reason and extension, so that a card with thousands
/// of sidecars takes a few lines.
class UnclaimedFiles {
public:
    void add(const FilePath& file, const Claim& claim);
    /// Possible footage first, then by number of files.
    [[nodiscard]] std::vector<UnclaimedGroup> groups() const;

private:
    std::vector<UnclaimedGroup> groups_;
};

}  // namespace qrx::tool
