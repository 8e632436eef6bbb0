#include "foundation/LayoutTest.h"

#include <string>

#include "foundation/FolderListing.h"
#include "foundation/Text.h"
#include "foundation/TreeWalk.h"

namespace qrx {

namespace {

bool holdsNameEndingWith(const OpenFolder& folder, std::string_view upperCasedEnd) {
    const FolderListing listing(folder);
    for (std::size_t i = 0; i < listing.size(); ++i) {
        if (endsWith(upperCased(listing[i].name), upperCasedEnd)) return true;
    }
    return false;
}

}  // namespace

bool folderHoldsLayout(const FilePath& folder, std::string_view subPath, SubPath where,
                       std::optional<std::string_view> extension) {
    const std::string upperCasedExtension = extension ? upperCased(*extension) : std::string();
    TreeWalk walk(folder);
    while (walk.next()) {
        if (walk.depth() == 0 && beginsWith(walk.name(), ".")) {
            walk.skipBelow();
            continue;
        }
        const bool matches = where == SubPath::atEnd ? endsWith(walk.path(), subPath)
                                                     : contains(walk.path(), subPath);
        if (!matches) continue;
        if (!extension) return true;
        if (walk.kind() == EntryKind::other) continue;
        const OpenFolder opened = walk.opened();
        if (opened && holdsNameEndingWith(opened, upperCasedExtension)) return true;
    }
    return false;
}

}  // namespace qrx
