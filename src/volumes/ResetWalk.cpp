#include "volumes/ResetWalk.h"

#include <utility>

#include "foundation/TreeWalk.h"

namespace qrx {

std::optional<ResetPlan> planForItemsBelow(const FilePath& drive, const ResetRule& rule) {
    if (isLink(drive)) return std::nullopt;
    ResetPlan plan;
    TreeWalk walk(drive);
    while (walk.next()) {
        auto step = rule({walk.path(), walk.name(), walk.kind(), walk.exists()});
        if (!step) continue;
        if (step->kind == ResetStep::Kind::remove) walk.skipBelow();
        plan.push_back(std::move(*step));
    }
    return plan;
}

}  // namespace qrx
