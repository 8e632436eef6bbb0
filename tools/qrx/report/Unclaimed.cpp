#include "qrx/report/Unclaimed.h"

#include <algorithm>
#include <tuple>

#include "foundation/PathText.h"
#include "foundation/Text.h"
#include "qrx/report/ClipFacts.h"

namespace qrx::tool {

void UnclaimedFiles::add(const FilePath& file, const Claim& claim) {
    constexpr std::size_t kExamples = 3;
    constexpr std::size_t kMostGroups = 40;
    std::string kind = upperCased(pathExtension(file));
    const auto known = [&] {
        return std::find_if(groups_.begin(), groups_.end(), [&](const UnclaimedGroup& each) {
            return each.reason == claim.reason && each.kind == kind &&
                   each.mayBeFootage == claim.mayBeFootage;
        });
    };
    auto group = known();
    if (group == groups_.end() && groups_.size() >= kMostGroups) {
        kind = "others";
        group = known();
    }
    if (group == groups_.end()) {
        groups_.push_back(
            {.reason = claim.reason, .kind = kind, .mayBeFootage = claim.mayBeFootage});
        group = groups_.end() - 1;
    }
    ++group->files;
    group->bytes += bytesOf(file).value_or(0);
    if (group->examples.size() < kExamples) group->examples.push_back(file);
}

std::vector<UnclaimedGroup> UnclaimedFiles::groups() const {
    std::vector<UnclaimedGroup> ordered = groups_;
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const UnclaimedGroup& a, const UnclaimedGroup& b) {
                         return std::tuple(!a.mayBeFootage, b.files, a.kind) <
                                std::tuple(!b.mayBeFootage, a.files, b.kind);
                     });
    return ordered;
}

}  // namespace qrx::tool
