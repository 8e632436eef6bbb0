#include "foundation/FileOrdering.h"

#include <algorithm>
#include <cstddef>
#include <list>
#include <map>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

#include "foundation/PathText.h"
#include "foundation/Text.h"

namespace qrx {

std::int32_t orderingNumber(std::string_view path) {
    return int32Value(trimNonDigits(lastPathComponentView(path)));
}

FilePaths byAscendingNumber(const FilePaths& paths) {
    struct Numbered {
        std::int32_t number;
        std::size_t index;
    };
    std::vector<Numbered> numbered;
    numbered.reserve(paths.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
        numbered.push_back({orderingNumber(paths[i]), i});
    }
    std::stable_sort(numbered.begin(), numbered.end(),
                     [](const Numbered& a, const Numbered& b) { return a.number < b.number; });
    FilePaths ordered;
    ordered.reserve(paths.size());
    for (const Numbered& entry : numbered) {
        ordered.push_back(paths[entry.index]);
    }
    return ordered;
}

std::optional<FileDate> creationDate(const FilePath& path) {
    if (path.find('\0') != FilePath::npos) return std::nullopt;
    struct statx item {};
    if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_MTIME, &item) !=
        0) {
        return std::nullopt;
    }
    const auto& date = (item.stx_mask & STATX_BTIME) != 0 ? item.stx_btime : item.stx_mtime;
    return FileDate{date.tv_sec, date.tv_nsec};
}

FilePaths byCreationDate(const FilePaths& paths, const DateOfFile& dateOf) {
    // The paths with a date are in ascending order among themselves at all times, whatever stands
    // between them; so the first later one is found in a map, and not by a walk over the list.
    std::list<const FilePath*> placed;
    std::multimap<FileDate, std::list<const FilePath*>::iterator> dated;
    for (const FilePath& path : paths) {
        const auto date = dateOf(path);
        if (!date) {
            placed.push_back(&path);
            continue;
        }
        const auto later = dated.upper_bound(*date);
        const auto place =
            placed.insert(later == dated.end() ? placed.end() : later->second, &path);
        dated.emplace_hint(later, *date, place);
    }
    FilePaths ordered;
    ordered.reserve(paths.size());
    for (const FilePath* const path : placed) {
        ordered.push_back(*path);
    }
    return ordered;
}

}  // namespace qrx
