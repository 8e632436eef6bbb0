#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "foundation/FilePath.h"
#include "foundation/FolderListing.h"
#include "volumes/DriveReset.h"

namespace qrx {

/// One item below a drive that is to be reset. `kind` tells a link from what it leads to.
struct ResetItem {
    const FilePath& path;
    std::string_view name;
    EntryKind kind = EntryKind::vanished;
    bool exists = false;  ///< NO for a link that leads nowhere
};

/// What is to be done about an item; nothing where it stays as it is.
using ResetRule = std::function<std::optional<ResetStep>(const ResetItem& item)>;

/// The steps for every item below `drive`, asked about in the order of a deep enumeration. What
/// lies below a folder that is removed is not asked about, and links are never entered.
///
/// @return nothing when `drive` is itself a link, for what it leads to was not named; a plan
///         without steps when there is nothing to be read.
[[nodiscard]] std::optional<ResetPlan> planForItemsBelow(const FilePath& drive,
                                                         const ResetRule& rule);

}  // namespace qrx
